// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/quick/PdfFileText.h"
#include "engine/quick/StreamDecoder.h"

namespace engine {

// One cross-reference table or stream (ISO 32000-1, 7.5.4 and 7.5.8): its subsections and its trailer, read without its
// entries. All members throw PdfSyntaxError for what is damaged or unusual.
class XrefSection {
 public:
  struct Entry {
    enum class Type { kFree, kOffset, kInStream } type = Type::kFree;
    std::uint64_t offset = 0;        // kOffset: where the object starts
    std::uint32_t generation = 0;    // kOffset
    std::uint32_t streamNumber = 0;  // kInStream: the object stream
    std::uint32_t index = 0;         // kInStream: which of its objects
  };

  // The section that starts at the offset exactly. `file` must outlive this object.
  XrefSection(const PdfFileText& file, std::uint64_t offset);

  bool IsStream() const { return decoder_ != nullptr; }
  // The number of the stream object; 0 for a table.
  std::uint32_t StreamNumber() const { return streamNumber_; }
  // The dictionary of the trailer or of the stream.
  const RawDictionary& Trailer() const { return *trailer_; }
  // Where the trailer's dictionary or the stream's data end.
  std::uint64_t End() const { return end_; }
  // One more than the highest object number with an entry here.
  std::uint64_t EndNumber() const;
  // No value when this section does not have an entry for the object.
  std::optional<Entry> Find(std::uint32_t number) const;
  // Calls visit(number, entry) for every entry. Throws as well when two entries are for one object.
  template <typename Visit>
  void ForEach(Visit visit) const {
    CheckOverlaps();
    for (const Subsection& subsection : subsections_) {
      std::string block;
      for (std::uint64_t i = 0; i < subsection.count; ++i) {
        const auto number = static_cast<std::uint32_t>(subsection.first + i);
        if (IsStream()) {
          visit(number, ReadStreamEntry(subsection.position + i));
          continue;
        }
        const std::uint64_t inBlock = i % kEntriesInBlock;
        if (inBlock == 0) block = ReadTableEntries(subsection, i);
        visit(number, ParseTableEntry(std::string_view(block).substr(inBlock * kTableEntrySize)));
      }
    }
  }

 private:
  static constexpr std::size_t kTableEntrySize = 20;
  static constexpr std::size_t kEntriesInBlock = 2000;

  struct Subsection {
    std::uint64_t first;
    std::uint64_t count;
    std::uint64_t position;  // of its first entry: offset in the file, or number of the row in the stream
  };

  void ReadTable(const PdfFileText& file, std::uint64_t offset);
  void ReadStream(const PdfFileText& file, std::uint64_t offset);
  void ReadWidths(std::string_view text);
  void ReadIndex(std::string_view text);
  void CheckRows(std::uint64_t offset) const;
  void AddSubsection(std::uint64_t first, std::uint64_t count, std::uint64_t position);
  void CheckOverlaps() const;
  Entry ReadTableEntry(std::uint64_t offset) const;
  std::string ReadTableEntries(const Subsection& subsection, std::uint64_t first) const;
  static Entry ParseTableEntry(std::string_view text);
  Entry ReadStreamEntry(std::uint64_t row) const;

  const PdfFileText& file_;
  std::optional<RawDictionary> trailer_;
  std::vector<Subsection> subsections_;
  std::uint32_t streamNumber_ = 0;
  std::uint64_t end_ = 0;
  std::size_t widths_[3] = {};
  std::unique_ptr<StreamDecoder> decoder_;
};

}  // namespace engine
