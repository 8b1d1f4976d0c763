// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/XrefChain.h"

#include <set>
#include <utility>

#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

constexpr std::size_t kMostSections = 1024;

}  // namespace

XrefChain::XrefChain(const PdfFileText& file, std::uint64_t startXref) {
  std::set<std::uint64_t> visited;
  const auto visit = [&](std::uint64_t offset) {
    if (offset == 0 || visited.size() >= kMostSections || !visited.insert(offset).second) throw PdfSyntaxError();
    return XrefSection(file, offset);
  };
  std::uint64_t size = 0;
  for (std::uint64_t offset = startXref;;) {
    XrefSection section = visit(offset);
    const RawDictionary& trailer = section.Trailer();
    if (links_.empty()) size = trailer.Unsigned("/Size");
    // An object beyond /Size does not exist for some readers, and its number would be given away a second time.
    if (trailer.Unsigned("/Size") > size || section.EndNumber() > size) throw PdfSyntaxError();
    std::optional<XrefSection> beside;
    if (!section.IsStream() && trailer.Has("/XRefStm")) {
      beside.emplace(visit(trailer.Unsigned("/XRefStm")));
      if (!beside->IsStream() || beside->EndNumber() > size) throw PdfSyntaxError();
    }
    const bool more = trailer.Has("/Prev");
    if (more) offset = trailer.Unsigned("/Prev");
    links_.push_back({std::move(section), std::move(beside)});
    if (!more) return;
  }
}

XrefSection::Entry XrefChain::Find(std::uint32_t number) const {
  // A reader that has met the number on a section's own stream may take it for that.
  for (const Link& link : links_) {
    if (link.section.StreamNumber() == number) throw PdfSyntaxError();
  }
  for (const Link& link : links_) {
    if (const auto entry = link.section.Find(number)) {
      if (entry->type == XrefSection::Entry::Type::kFree) break;
      return *entry;
    }
    if (link.beside) break;
  }
  throw PdfSyntaxError();
}

}  // namespace engine
