// SPDX-License-Identifier: Apache-2.0
#include "engine/links/QuickObjects.h"

#include <unordered_set>

#include "engine/quick/PdfFileText.h"
#include "engine/quick/StreamDecoder.h"
#include "engine/quick/XrefChain.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

using Type = XrefMap::Place::Type;

constexpr std::size_t kLongestObject = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kLongestStream = std::size_t{16} * 1024 * 1024;
constexpr std::size_t kKeptStreams = std::size_t{32} * 1024 * 1024;
constexpr std::uint64_t kMostObjectsInStream = 100000;

XrefMap ReadPlaces(const InputFile& file, std::uint64_t startXref) {
  const PdfFileText text(file);
  return XrefMap(XrefChain(text, startXref));
}

// A file whose streams inflate to more than this is left to the full parser, which has limits of its own.
std::uint64_t MostDecoded(const InputFile& file) {
  return (std::uint64_t{64} << 20) + 100 * file.Size();
}

// A value as it is in the file. Throws PdfSyntaxError for a dictionary with a value too many, which full parsers read
// differently.
std::string PlainText(const PdfLexer& lexer, const PdfLexer::Value& value) {
  const std::string_view text = lexer.Text(value);
  if (value.kind == PdfLexer::Kind::kDictionary) {
    PdfLexer entries(text, 2);
    for (entries.SkipSpace(); text.compare(entries.Position(), 2, ">>") != 0; entries.SkipSpace()) {
      if (entries.ReadValue().kind != PdfLexer::Kind::kName) throw PdfSyntaxError();
      entries.ReadValue();
    }
  }
  return std::string(text);
}

}  // namespace

QuickObjects::QuickObjects(const InputFile& file, std::uint64_t startXref)
    : file_(file), places_(ReadPlaces(file, startXref)), windows_(file), decodable_(MostDecoded(file)) {}

bool QuickObjects::Exists(ObjectId id) const {
  const XrefMap::Place place = places_.Find(id.number);
  return (place.type == Type::kOffset && place.detail == id.generation) ||
         (place.type == Type::kInStream && id.generation == 0);
}

std::optional<std::string> QuickObjects::Text(ObjectId id) {
  if (!Exists(id)) return "null";
  const XrefMap::Place place = places_.Find(id.number);
  return place.type == Type::kOffset ? TextAt(place.where, id) : TextInStream(id, place);
}

std::optional<std::string> QuickObjects::TextAt(std::uint64_t offset, ObjectId id) {
  for (std::size_t count = FileWindows::kCheap;; count *= 4) {
    const std::string_view text = windows_.View(offset, count);
    try {
      PdfLexer lexer(text);
      if (lexer.ReadObjectHeader() != id) throw PdfSyntaxError();
      const PdfLexer::Value value = lexer.ReadValue();
      lexer.SkipSpace();
      if (lexer.Accept("endobj")) return PlainText(lexer, value);
      lexer.Expect("stream");
      return std::nullopt;
    } catch (const PdfSyntaxError& error) {
      if (!error.truncated() || text.size() < count || count >= kLongestObject) throw PdfSyntaxError();
    }
  }
}

std::string QuickObjects::TextInStream(ObjectId id, const XrefMap::Place& place) {
  const ObjectStream& stream = Stream(static_cast<std::uint32_t>(place.where));
  if (place.detail >= stream.objects.size() || stream.objects[place.detail].first != id.number) throw PdfSyntaxError();
  PdfLexer lexer(stream.data, stream.objects[place.detail].second);
  return PlainText(lexer, lexer.ReadValue());
}

const QuickObjects::ObjectStream& QuickObjects::Stream(std::uint32_t number) {
  const auto found = streamsByNumber_.find(number);
  if (found != streamsByNumber_.end()) {
    streams_.splice(streams_.begin(), streams_, found->second);
    return streams_.front();
  }
  streams_.push_front(ReadStream(number));
  streamsByNumber_[number] = streams_.begin();
  streamBytes_ += streams_.front().data.size();
  while (streamBytes_ > kKeptStreams && streams_.size() > 1) {
    streamBytes_ -= streams_.back().data.size();
    streamsByNumber_.erase(streams_.back().number);
    streams_.pop_back();
  }
  return streams_.front();
}

QuickObjects::ObjectStream QuickObjects::ReadStream(std::uint32_t number) {
  const XrefMap::Place place = places_.Find(number);
  if (place.type != Type::kOffset || place.detail != 0) throw PdfSyntaxError();
  const PdfFileText file(file_);
  const PdfFileText::Object object = file.ReadObject(place.where);
  const RawDictionary& dictionary = object.dictionary;
  if (object.id != ObjectId{number, 0} || dictionary.Text("/Type") != "/ObjStm") throw PdfSyntaxError();
  const std::uint64_t length = StreamLength(dictionary.Text("/Length"));
  file.CheckStreamEnd(object, length);
  const std::uint64_t count = dictionary.Unsigned("/N");
  const std::uint64_t first = dictionary.Unsigned("/First");
  if (count > kMostObjectsInStream) throw PdfSyntaxError();

  StreamDecoder decoder(file_, object.dataOffset, length, StreamDecoder::ReadCoding(dictionary));
  ObjectStream stream;
  stream.number = number;
  stream.data = decoder.Decode(kLongestStream);
  if (stream.data.size() >= kLongestStream || stream.data.size() > decodable_ || first > stream.data.size()) {
    throw PdfSyntaxError();
  }
  decodable_ -= stream.data.size();
  stream.data += '\n';  // ends the last object's last token
  PdfLexer lexer(stream.data);
  std::unordered_set<std::uint64_t> numbers;
  for (std::uint64_t i = 0; i < count; ++i) {
    lexer.SkipSpace();
    const std::uint64_t itsNumber = lexer.ReadUnsigned();
    lexer.SkipSpace();
    const std::uint64_t offset = first + lexer.ReadUnsigned();
    // Some readers use the number, some the index: both must lead to the same object.
    if (offset >= stream.data.size() || !numbers.insert(itsNumber).second) throw PdfSyntaxError();
    stream.objects.emplace_back(itsNumber, static_cast<std::size_t>(offset));
  }
  return stream;
}

// /Length may be a reference to a number.
std::uint64_t QuickObjects::StreamLength(std::string_view value) {
  if (value.back() != 'R') return PdfLexer::ToUnsigned(value);
  const ObjectId id = PdfLexer::ToReference(value);
  const XrefMap::Place place = places_.Find(id.number);
  if (place.type != Type::kOffset || place.detail != id.generation) throw PdfSyntaxError();
  return PdfLexer::ToUnsigned(TextAt(place.where, id).value_or(""));
}

}  // namespace engine
