// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

#include "engine/quick/XrefChain.h"

namespace engine {

// Where every object of a file is: all entries of its cross-reference sections (ISO 32000-1, 7.5.4 to 7.5.8), 16 bytes
// an object.
class XrefMap {
 public:
  struct Place {
    enum class Type : std::uint8_t { kUnknown, kFree, kOffset, kInStream };

    std::uint64_t where = 0;   // the offset, or the number of the object stream
    std::uint32_t detail = 0;  // the generation, or the index in the object stream
    Type type = Type::kUnknown;
  };

  // Throws PdfSyntaxError for what is damaged or unusual.
  explicit XrefMap(const XrefChain& chain);

  // kUnknown for a number without an entry.
  Place Find(std::uint32_t number) const { return number < places_.size() ? places_[number] : Place(); }

 private:
  void Add(const XrefSection& section, bool used, bool free);

  std::vector<Place> places_;
};

}  // namespace engine
