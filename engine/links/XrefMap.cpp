// SPDX-License-Identifier: Apache-2.0
#include "engine/links/XrefMap.h"

#include <algorithm>

namespace engine {

namespace {

// ISO 32000-1, annex C: the most indirect objects of a file.
constexpr std::uint64_t kMostObjects = 8388607;

}  // namespace

XrefMap::XrefMap(const XrefChain& chain) {
  for (const XrefChain::Link& link : chain.Links()) {
    if (!link.beside) {
      Add(link.section, true, true);
      continue;
    }
    // What the table calls free may be in the stream beside it (ISO 32000-1, 7.5.8.4).
    Add(link.section, true, false);
    Add(*link.beside, true, true);
    Add(link.section, false, true);
  }
}

// Adds the entries of numbers that no later section has.
void XrefMap::Add(const XrefSection& section, bool used, bool free) {
  const std::uint64_t end = section.EndNumber();
  if (end > kMostObjects) throw PdfSyntaxError();
  if (places_.size() < end) places_.resize(static_cast<std::size_t>(end));
  section.ForEach([&](std::uint32_t number, const XrefSection::Entry& entry) {
    Place& place = places_[number];
    const bool isFree = entry.type == XrefSection::Entry::Type::kFree;
    if (place.type != Place::Type::kUnknown || !(isFree ? free : used)) return;
    if (isFree) {
      place.type = Place::Type::kFree;
    } else if (entry.type == XrefSection::Entry::Type::kOffset) {
      place = {entry.offset, entry.generation, Place::Type::kOffset};
    } else {
      place = {entry.streamNumber, entry.index, Place::Type::kInStream};
    }
  });
}

}  // namespace engine
