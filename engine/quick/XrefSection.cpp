// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/XrefSection.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

constexpr std::size_t kWidestField = 8;
constexpr std::size_t kMostSubsections = 1 << 16;
constexpr std::uint32_t kHighestNumber = 8388607;  // ISO 32000-1, table C.1
constexpr std::uint64_t kMostObjects = std::numeric_limits<std::int32_t>::max();

bool IsTable(std::string_view text) {
  return text.compare(0, 4, "xref") == 0;
}

}  // namespace

XrefSection::XrefSection(const PdfFileText& file, std::uint64_t offset) : file_(file) {
  std::string storage;
  if (IsTable(file.View(offset, 4, storage))) {
    ReadTable(file, offset + 4);
  } else {
    ReadStream(file, offset);
  }
}

void XrefSection::AddSubsection(std::uint64_t first, std::uint64_t count, std::uint64_t position) {
  if (first > kMostObjects || count > kMostObjects || subsections_.size() >= kMostSubsections) throw PdfSyntaxError();
  if (count > 0) subsections_.push_back({first, count, position});
}

void XrefSection::ReadTable(const PdfFileText& file, std::uint64_t offset) {
  std::string storage;
  for (;;) {
    const std::string_view text = file.View(offset, 64, storage);
    std::size_t begin = 0;
    while (begin < text.size() && PdfLexer::IsSpace(text[begin])) ++begin;
    PdfLexer lexer(text, begin);
    if (lexer.Accept("trailer")) {
      PdfFileText::Trailer trailer = file.ReadTrailer(offset + begin);
      trailer_ = std::move(trailer.dictionary);
      end_ = trailer.end;
      return;
    }
    const std::uint64_t first = lexer.ReadUnsigned();
    lexer.SkipSpace();
    const std::uint64_t count = lexer.ReadUnsigned();
    lexer.SkipSpace();
    offset += lexer.Position();
    AddSubsection(first, count, offset);
    if (count > 0) {
      // A table whose entries do not have the standard length shows at one of its ends.
      ReadTableEntry(offset);
      offset += (count - 1) * kTableEntrySize;
      ReadTableEntry(offset);
      offset += kTableEntrySize;
    }
  }
}

void XrefSection::ReadStream(const PdfFileText& file, std::uint64_t offset) {
  // An offset into the number of another object shows that others are wrong, too.
  std::string storage;
  if (offset > 0 && !PdfLexer::IsDelimiter(file.View(offset - 1, 1, storage).front())) throw PdfSyntaxError();
  PdfFileText::Object object = file.ReadObject(offset);
  streamNumber_ = object.id.number;
  if (streamNumber_ > kHighestNumber) throw PdfSyntaxError();
  const RawDictionary& dictionary = trailer_.emplace(std::move(object.dictionary));
  if (dictionary.Text("/Type") != "/XRef") throw PdfSyntaxError();
  const std::uint64_t length = dictionary.Unsigned("/Length");
  file.CheckStreamEnd(object, length);
  end_ = object.dataOffset + length;
  ReadWidths(dictionary.Text("/W"));
  if (dictionary.Has("/Index")) {
    ReadIndex(dictionary.Text("/Index"));
  } else {
    AddSubsection(0, dictionary.Unsigned("/Size"), 0);
  }
  const StreamDecoder::Coding coding = StreamDecoder::ReadCoding(dictionary);
  if (coding.columns != 0 && coding.columns != widths_[0] + widths_[1] + widths_[2]) throw PdfSyntaxError();
  decoder_ = std::make_unique<StreamDecoder>(file.File(), file.HeaderOffset() + object.dataOffset, length, coding);
  CheckRows(offset);
}

// Where rows are missing or left over, name an object stream of number 0, or say that the stream itself is elsewhere,
// some readers rebuild the cross-references. Long streams are not decoded for this alone.
void XrefSection::CheckRows(std::uint64_t offset) const {
  constexpr std::uint64_t kMostDecoded = 64 * 1024;
  std::uint64_t size = 0;
  for (const Subsection& subsection : subsections_) {
    if (subsection.count > kMostDecoded) return;
    size += subsection.count * (widths_[0] + widths_[1] + widths_[2]);
  }
  if (size > kMostDecoded) return;
  const std::size_t rowSize = widths_[0] + widths_[1] + widths_[2];
  const std::string_view rows = decoder_->Decode(static_cast<std::size_t>(size) + rowSize);
  if (rows.size() < size || rows.size() >= size + rowSize) throw PdfSyntaxError();
  const std::optional<Entry> own = Find(streamNumber_);
  // Some producers leave the offset 0.
  const bool elsewhere = own && own->type == Entry::Type::kOffset && own->offset != 0 && own->offset != offset;
  if (elsewhere || (own && own->type == Entry::Type::kInStream)) throw PdfSyntaxError();
  if (widths_[0] == 0) return;  // no row is about an object stream
  const std::string missing = std::string(widths_[0] - 1, '\0') + '\2' + std::string(widths_[1], '\0');
  for (std::size_t row = 0; row < size; row += rowSize) {
    if (rows[row + missing.size() - 1] == 0 && rows.compare(row, missing.size(), missing) == 0) throw PdfSyntaxError();
  }
}

void XrefSection::ReadWidths(std::string_view text) {
  const std::vector<std::uint64_t> widths = PdfLexer::ToUnsignedArray(text);
  if (widths.size() != 3 || widths[1] == 0) throw PdfSyntaxError();
  for (std::size_t i = 0; i < 3; ++i) {
    if (widths[i] > kWidestField) throw PdfSyntaxError();
    widths_[i] = static_cast<std::size_t>(widths[i]);
  }
}

void XrefSection::ReadIndex(std::string_view text) {
  const std::vector<std::uint64_t> index = PdfLexer::ToUnsignedArray(text);
  if (index.size() % 2 != 0) throw PdfSyntaxError();
  std::uint64_t row = 0;
  for (std::size_t i = 0; i < index.size(); i += 2) {
    AddSubsection(index[i], index[i + 1], row);
    row += index[i + 1];
  }
}

std::uint64_t XrefSection::EndNumber() const {
  std::uint64_t end = 0;
  for (const Subsection& subsection : subsections_) end = std::max(end, subsection.first + subsection.count);
  return end;
}

std::optional<XrefSection::Entry> XrefSection::Find(std::uint32_t number) const {
  std::optional<std::uint64_t> position;
  for (const Subsection& subsection : subsections_) {
    if (number < subsection.first || number - subsection.first >= subsection.count) continue;
    if (position) throw PdfSyntaxError();  // Two entries for one object: readers differ.
    position = subsection.position + (number - subsection.first) * (IsStream() ? 1 : kTableEntrySize);
  }
  if (!position) return std::nullopt;
  return IsStream() ? ReadStreamEntry(*position) : ReadTableEntry(*position);
}

void XrefSection::CheckOverlaps() const {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
  ranges.reserve(subsections_.size());
  for (const Subsection& subsection : subsections_) ranges.emplace_back(subsection.first, subsection.count);
  std::sort(ranges.begin(), ranges.end());
  for (std::size_t i = 1; i < ranges.size(); ++i) {
    if (ranges[i].first - ranges[i - 1].first < ranges[i - 1].second) throw PdfSyntaxError();
  }
}

XrefSection::Entry XrefSection::ReadTableEntry(std::uint64_t offset) const {
  std::string storage;
  return ParseTableEntry(file_.View(offset, kTableEntrySize, storage));
}

// A block of a subsection's entries from the first one on.
std::string XrefSection::ReadTableEntries(const Subsection& subsection, std::uint64_t first) const {
  const std::uint64_t count = std::min<std::uint64_t>(kEntriesInBlock, subsection.count - first);
  return file_.Read(subsection.position + first * kTableEntrySize, static_cast<std::size_t>(count) * kTableEntrySize);
}

// "nnnnnnnnnn ggggg n" and an end of line of two bytes, at the start of the text.
XrefSection::Entry XrefSection::ParseTableEntry(std::string_view text) {
  if (text.size() < kTableEntrySize) throw PdfSyntaxError();
  const std::string_view view = text.substr(0, kTableEntrySize);
  const std::string_view end = view.substr(18);
  const bool used = text[17] == 'n';
  if (text[10] != ' ' || text[16] != ' ' || (!used && text[17] != 'f') ||
      (end != " \n" && end != " \r" && end != "\r\n")) {
    throw PdfSyntaxError();
  }
  Entry entry;
  entry.offset = PdfLexer::ToUnsigned(view.substr(0, 10));
  entry.generation = static_cast<std::uint32_t>(PdfLexer::ToUnsigned(view.substr(11, 5)));
  entry.type = used ? Entry::Type::kOffset : Entry::Type::kFree;
  return entry;
}

XrefSection::Entry XrefSection::ReadStreamEntry(std::uint64_t row) const {
  const std::size_t rowSize = widths_[0] + widths_[1] + widths_[2];
  const std::size_t end = static_cast<std::size_t>(row + 1) * rowSize;
  const std::string_view rows = decoder_->Decode(end);
  if (rows.size() < end) throw PdfSyntaxError();
  std::size_t position = end - rowSize;
  std::uint64_t fields[3] = {1, 0, 0};  // A type field of width 0 means type 1.
  for (std::size_t i = 0; i < 3; ++i) {
    if (widths_[i] > 0) fields[i] = 0;
    for (std::size_t byte = 0; byte < widths_[i]; ++byte) {
      fields[i] = fields[i] << 8 | static_cast<unsigned char>(rows[position++]);
    }
  }
  constexpr std::uint64_t kMost32 = std::numeric_limits<std::uint32_t>::max();
  Entry entry;
  if (fields[0] == 1 && fields[2] <= kMost32) {
    entry.type = Entry::Type::kOffset;
    entry.offset = fields[1];
    entry.generation = static_cast<std::uint32_t>(fields[2]);
  } else if (fields[0] == 2 && fields[1] <= kMost32 && fields[2] <= kMost32) {
    entry.type = Entry::Type::kInStream;
    entry.streamNumber = static_cast<std::uint32_t>(fields[1]);
    entry.index = static_cast<std::uint32_t>(fields[2]);
  } else if (fields[0] != 0) {
    throw PdfSyntaxError();
  }
  return entry;
}

}  // namespace engine
