// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/ObjectFinder.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/quick/StreamDecoder.h"
#include "engine/syntax/BackwardText.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

using Type = XrefSection::Entry::Type;

constexpr std::uint64_t kMostObjectsInStream = 100000;
constexpr std::uint64_t kLongestDirectory = 2 * 1024 * 1024;
constexpr std::size_t kLongestObject = 16 * 1024 * 1024;
constexpr std::size_t kLargestChecked = 64 * 1024;
constexpr std::uint64_t kMostCheckedNumbers = 8192;

std::uint64_t OffsetOf(const XrefSection::Entry& entry, ObjectId object) {
  if (entry.type != Type::kOffset || entry.generation != object.generation) throw PdfSyntaxError();
  return entry.offset;
}

// The offset of the object with that number and index, from the pairs at the start of an object stream.
std::uint64_t OffsetInStream(std::string_view directory, std::uint64_t count, std::uint32_t number,
                             std::uint32_t index) {
  const std::string text = std::string(directory) + ' ';
  PdfLexer lexer(text);
  std::optional<std::uint64_t> found;
  for (std::uint64_t i = 0; i < count; ++i) {
    lexer.SkipSpace();
    const std::uint64_t itsNumber = lexer.ReadUnsigned();
    lexer.SkipSpace();
    const std::uint64_t itsOffset = lexer.ReadUnsigned();
    // Readers go by number or by index: both must lead to the same object.
    if ((itsNumber == number) != (i == index)) throw PdfSyntaxError();
    if (i == index) found = itsOffset;
  }
  if (!found) throw PdfSyntaxError();
  return *found;
}

// Whether the object starts at the offset or after white space there.
bool IsObjectAt(std::string_view text, std::uint64_t offset, ObjectId id) {
  return offset < text.size() && PdfLexer::FindObjectHeader(text.substr(static_cast<std::size_t>(offset))) == id;
}

// Whether the text has an object of each number below `end`.
std::vector<bool> ObjectsIn(std::string_view text, std::size_t end) {
  constexpr std::size_t kMostDigits = 9;
  std::vector<bool> objects(end);
  for (std::size_t at = text.find("obj"); at != std::string_view::npos; at = text.find("obj", at + 1)) {
    std::string_view head = text.substr(0, at);
    if (!TakeSpaces(head) || TakeDigits(head).empty() || !TakeSpaces(head)) continue;
    const std::string_view digits = TakeDigits(head);
    if (digits.empty() || digits.size() > kMostDigits) continue;
    const std::uint64_t number = PdfLexer::ToUnsigned(digits);
    if (number < end) objects[static_cast<std::size_t>(number)] = true;
  }
  return objects;
}

RawDictionary DictionaryAt(StreamDecoder& decoder, std::uint64_t offset) {
  if (offset > kLongestObject) throw PdfSyntaxError();
  const auto begin = static_cast<std::size_t>(offset);
  for (std::size_t window = 1024; window <= kLongestObject; window *= 4) {
    const std::string_view decoded = decoder.Decode(begin + window);
    if (decoded.size() <= begin) break;
    const std::string_view text = decoded.substr(begin);
    try {
      PdfLexer lexer(text);
      lexer.SkipSpace();
      return RawDictionary(text.substr(lexer.Position())).Kept();
    } catch (const PdfSyntaxError& error) {
      if (!error.truncated() || text.size() < window) throw PdfSyntaxError();
    }
  }
  throw PdfSyntaxError();
}

}  // namespace

RawDictionary ObjectFinder::ReadDictionary(ObjectId object) const {
  const XrefSection::Entry entry = chain_.Find(object.number);
  if (entry.type == Type::kInStream) return ReadFromStream(object, entry);
  PdfFileText::Object found = file_.ReadObject(OffsetOf(entry, object));
  if (found.id != object || found.dataOffset != 0) throw PdfSyntaxError();
  return std::move(found.dictionary);
}

void ObjectFinder::CheckExists(ObjectId object) const {
  const XrefSection::Entry entry = chain_.Find(object.number);
  if (entry.type == Type::kInStream) {
    if (object.generation != 0) throw PdfSyntaxError();
    file_.CheckObject(StreamOffset(entry), {entry.streamNumber, 0});
  } else {
    file_.CheckObject(OffsetOf(entry, object), object);
  }
}

void ObjectFinder::CheckEntries() const {
  std::uint64_t end = 0;
  for (const XrefChain::Link& link : chain_.Links()) end = std::max(end, link.section.EndNumber());
  const std::string* const bytes = file_.File().Bytes();
  if (bytes == nullptr || bytes->size() > kLargestChecked || end > kMostCheckedNumbers) return;
  const std::string_view text = std::string_view(*bytes).substr(static_cast<std::size_t>(file_.HeaderOffset()));
  std::vector<std::optional<Type>> types(static_cast<std::size_t>(end));
  std::vector<std::uint32_t> streams;
  std::vector<bool> present;
  for (const XrefChain::Link& link : chain_.Links()) {
    link.section.ForEach([&](std::uint32_t number, const XrefSection::Entry& entry) {
      if (types[number]) return;
      types[number] = entry.type;
      if (entry.type == Type::kOffset) {
        const ObjectId id{number, entry.generation};
        if (IsObjectAt(text, entry.offset, id)) return;
        if (present.empty()) present = ObjectsIn(text, types.size());
        if (present[number]) throw PdfSyntaxError();
      } else if (entry.type == Type::kInStream) {
        streams.push_back(entry.streamNumber);
      }
    });
  }
  for (const std::uint32_t stream : streams) {
    if (stream >= end || types[stream] != Type::kOffset) throw PdfSyntaxError();
  }
}

std::uint64_t ObjectFinder::StreamOffset(const XrefSection::Entry& entry) const {
  return OffsetOf(chain_.Find(entry.streamNumber), {entry.streamNumber, 0});
}

// /Length may be a reference to a number.
std::uint64_t ObjectFinder::StreamLength(std::string_view text) const {
  if (text.find('R') == std::string_view::npos) return PdfLexer::ToUnsigned(text);
  const ObjectId id = PdfLexer::ToReference(text);
  const std::string object = file_.Read(OffsetOf(chain_.Find(id.number), id), 64);
  PdfLexer lexer(object);
  if (lexer.ReadObjectHeader() != id) throw PdfSyntaxError();
  lexer.SkipSpace();
  const std::uint64_t length = lexer.ReadUnsigned();
  lexer.SkipSpace();
  lexer.Expect("endobj");
  return length;
}

RawDictionary ObjectFinder::ReadFromStream(ObjectId object, const XrefSection::Entry& entry) const {
  if (object.generation != 0 || entry.streamNumber == object.number) throw PdfSyntaxError();
  const PdfFileText::Object stream = file_.ReadObject(StreamOffset(entry));
  const RawDictionary& dictionary = stream.dictionary;
  if (stream.id != ObjectId{entry.streamNumber, 0} || dictionary.Text("/Type") != "/ObjStm") throw PdfSyntaxError();
  const std::uint64_t length = StreamLength(dictionary.Text("/Length"));
  file_.CheckStreamEnd(stream, length);
  const std::uint64_t count = dictionary.Unsigned("/N");
  const std::uint64_t first = dictionary.Unsigned("/First");
  if (count > kMostObjectsInStream || first > kLongestDirectory) throw PdfSyntaxError();

  StreamDecoder decoder(file_.File(), file_.HeaderOffset() + stream.dataOffset, length,
                        StreamDecoder::ReadCoding(dictionary));
  const std::string_view directory = decoder.Decode(static_cast<std::size_t>(first));
  if (directory.size() < first) throw PdfSyntaxError();
  const std::uint64_t offset =
      OffsetInStream(directory.substr(0, static_cast<std::size_t>(first)), count, object.number, entry.index);
  return DictionaryAt(decoder, first + offset);
}

}  // namespace engine
