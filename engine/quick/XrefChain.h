// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/quick/PdfFileText.h"
#include "engine/quick/XrefSection.h"

namespace engine {

// The cross-reference sections of a file from the last one back to the first (/Prev and /XRefStm). Every section's head
// and trailer are checked, its entries only as they are looked up. All members throw PdfSyntaxError.
class XrefChain {
 public:
  // `file` must outlive this object.
  XrefChain(const PdfFileText& file, std::uint64_t startXref);

  struct Link {
    XrefSection section;
    std::optional<XrefSection> beside;  // the stream of a hybrid file's section, with more of its objects
  };

  // The sections, the last one first.
  const std::vector<Link>& Links() const { return links_; }
  // The section that startxref names.
  const XrefSection& Last() const { return links_.front().section; }
  // The entry in force for an object in use.
  XrefSection::Entry Find(std::uint32_t number) const;

 private:
  std::vector<Link> links_;
};

}  // namespace engine
