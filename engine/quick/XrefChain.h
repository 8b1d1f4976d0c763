// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
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

  // The section that startxref names.
  const XrefSection& Last() const { return links_.front().section; }
  bool IsHybrid() const { return links_.front().hybrid; }
  // The entry in force for an object in use.
  XrefSection::Entry Find(std::uint32_t number) const;

 private:
  struct Link {
    XrefSection section;
    bool hybrid;  // some of its objects are in a stream beside the table
  };

  std::vector<Link> links_;
};

}  // namespace engine
