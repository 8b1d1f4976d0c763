// SPDX-License-Identifier: Apache-2.0
// The objects of a repaired file: those in object streams, those that are damaged, streams with wrong lengths.
#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <map>
#include <new>
#include <set>

#include "engine/backend/CryptFilters.h"
#include "engine/backend/FileRepair.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/RawObjects.h"
#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/repair/FileWindow.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

using Kind = FileScan::Kind;
using View = BackendInputSource::View;

// Streams with wrong lengths are copied in memory.
constexpr std::uint64_t kLargestRepairedStreams = 128 * 1024 * 1024;

void RemoveEndOfLine(std::string& text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  if (!text.empty() && text.back() == '\r') text.pop_back();
}

CannotRepair VersionsDiffer(std::uint32_t number) {
  return CannotRepair("object " + std::to_string(number) + " has several versions, and one of them is damaged");
}

struct Inflatable {
  std::size_t size;  // the bytes of the data before the one that cannot be inflated; all where there is none
  bool unfinished;   // the data are sound so far, but their end is missing
};

Inflatable Inflate(const std::string& data) {
  constexpr uLong kMostInflated = 1 << 30;
  std::vector<unsigned char> output(64 * 1024);
  z_stream inflater = {};
  if (inflateInit(&inflater) != Z_OK) throw std::bad_alloc();
  std::size_t size = 0;
  int result = Z_OK;
  for (; size < data.size() && result == Z_OK && inflater.total_out < kMostInflated; ++size) {
    // Only a byte at a time shows which of them is wrong.
    unsigned char byte = static_cast<unsigned char>(data[size]);
    inflater.next_in = &byte;
    inflater.avail_in = 1;
    do {
      inflater.next_out = output.data();
      inflater.avail_out = static_cast<uInt>(output.size());
      result = inflate(&inflater, Z_NO_FLUSH);
    } while (result == Z_OK && inflater.avail_out == 0);
    if (result == Z_BUF_ERROR) result = Z_OK;  // it needs more
  }
  inflateEnd(&inflater);
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  return {result == Z_OK || result == Z_STREAM_END ? data.size() : size - 1, result == Z_OK};
}

// Whether a stream with this dictionary is a font (ISO 32000-1, tables 126 and 127).
bool IsFontProgram(QPDFObjectHandle dictionary) {
  QPDFObjectHandle subtype = dictionary.getKey("/Subtype");
  return dictionary.hasKey("/Length1") || subtype.isNameAndEquals("/Type1C") ||
         subtype.isNameAndEquals("/CIDFontType0C") || subtype.isNameAndEquals("/OpenType");
}

// Whether the data of a stream with this dictionary are deflated first of all (ISO 32000-1, 7.3.8.2).
bool IsDeflated(QPDFObjectHandle dictionary) {
  QPDFObjectHandle filter = dictionary.getKey("/Filter");
  if (filter.isArray() && filter.getArrayNItems() > 0) filter = filter.getArrayItem(0);
  return filter.isName() && filter.getName() == "/FlateDecode";
}

}  // namespace

// Whether an object outside of object streams is newer than what is in an object stream before it: it is in an update
// of the file that has the stream. Other readers take the object in the stream when they rebuild the file.
bool FileRepair::Updates(const FileScan::Object& object, const FileScan::Object& stream) {
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  const auto next =
      std::upper_bound(trailers.begin(), trailers.end(), stream.offset,
                       [](std::uint64_t offset, const FileScan::Trailer& trailer) { return offset < trailer.offset; });
  return !object.damaged && next != trailers.end() && next->offset < object.offset &&
         trailers.back().offset > object.offset;
}

// Whether the file's cross-references can lead to object streams (ISO 32000-1, 7.5.8); true when it has none.
bool FileRepair::NamesObjectStreams() {
  const FileScan& scan = Scan();
  return scan.trailers.empty() ||
         std::any_of(scan.objects.begin(), scan.objects.end(),
                     [](const FileScan::Object& object) { return object.kind == Kind::kXrefStream; }) ||
         std::any_of(scan.trailers.begin(), scan.trailers.end(),
                     [](const FileScan::Trailer& trailer) { return !LenientEntry(trailer.text, "/XRefStm").empty(); });
}

// The numbers of the objects in an object stream that is whole.
std::vector<std::uint32_t> FileRepair::SoundMembers(ObjectStreams& streams, QPDF& document,
                                                    const FileScan::Object& stream) {
  QPDFObjectHandle parsed = ObjectOf(document, stream.id);
  std::vector<std::uint32_t> members = streams.Members(parsed);
  // It may be encrypted or not.
  if (members.empty() && !document.isEncrypted()) throw CannotRepair("an object stream cannot be read");
  const bool whole = std::find(members.begin(), members.end(), 0U) == members.end();
  // A stream cannot be in itself.
  const bool renamed = std::find(members.begin(), members.end(), stream.id.number) != members.end();
  // Bytes that are missing or left over shift the objects in it, unless a filter fails on them.
  const bool shifted = stream.wrongLength && !parsed.getDict().hasKey("/Filter");
  if (stream.damaged || shifted || renamed || !whole) throw CannotRepair("an object stream is damaged");
  return members;
}

// Whether an object in the stream replaces the one known so far. Of several objects of one number the last one in the
// file counts. What replaces a stream or comes without cross-references to it is of another document.
bool FileRepair::MemberReplaces(const Placed& known, const FileScan::Object& stream, bool named) {
  const bool before = known.place <= stream.offset;
  const FileScan::Object* const other = known.object.stream == 0 ? ScannedAt(known.place) : nullptr;
  if (other == nullptr) return before;
  if (!before && other->badKeys) throw VersionsDiffer(known.object.id.number);
  if (!before) return !Updates(*other, stream);
  if (other->data != 0 || !named) throw CannotRepair("an object stream is of another document");
  return true;
}

// With the objects in object streams.
FileRepair::Kept FileRepair::AddMembers(QPDF& document, const Kept& plain) {
  const std::uint64_t headerOffset = QuickReader::HeaderOffset(*file_);
  std::map<std::uint32_t, Placed> all;
  for (const FileTail::KeptObject& object : plain) all[object.id.number] = {object, object.offset + headerOffset};
  ObjectStreams streams(file_->Size());
  const bool named = NamesObjectStreams();
  for (const FileScan::Object& stream : Newest()) {
    if (stream.kind != Kind::kObjectStream || stream.id.generation != 0) continue;
    const std::vector<std::uint32_t> members = SoundMembers(streams, document, stream);
    for (std::uint32_t index = 0; index < members.size(); ++index) {
      const std::uint32_t number = members[index];
      const auto known = all.find(number);
      if (known != all.end() && !MemberReplaces(known->second, stream, named)) continue;
      all[number] = {{{number, 0}, 0, stream.id.number, index}, stream.offset};
    }
  }
  Kept kept;
  for (const auto& [number, placed] : all) {
    // What is in a stream that another object has replaced is gone.
    const auto stream = all.find(placed.object.stream);
    if (placed.object.stream != 0 && (stream == all.end() || stream->second.object.stream != 0)) continue;
    kept.push_back(placed.object);
  }
  return kept;
}

// A member that cannot be read does not take the place of an object outside of object streams.
FileRepair::Kept FileRepair::WithoutUnreadableMembers(QPDF& document, const Kept& kept, const Kept& plain) {
  Kept result = kept;
  auto other = plain.begin();
  for (FileTail::KeptObject& object : result) {
    while (other != plain.end() && other->id.number < object.id.number) ++other;
    if (other == plain.end() || other->id.number != object.id.number || object.stream == 0) continue;
    if (ObjectOf(document, object.id).isNull()) object = *other;
  }
  return result;
}

// Readers differ about what is left of a damaged object stream, and about a damaged object in it.
void FileRepair::CheckMembers(QPDF& document, const Kept& kept) const {
  Kept members;
  std::copy_if(kept.begin(), kept.end(), std::back_inserter(members),
               [](const FileTail::KeptObject& object) { return object.stream != 0; });
  std::stable_sort(members.begin(), members.end(), [](const auto& a, const auto& b) { return a.stream < b.stream; });
  RawObjects objects(document, *file_, QuickReader::HeaderOffset(*file_));
  ObjectStreams streams(file_->Size());
  std::uint32_t stream = 0;
  for (const FileTail::KeptObject& member : members) {
    if (member.stream != stream) streams.Members(ObjectOf(document, {member.stream, 0}));
    stream = member.stream;
    if (!streams.Decoded() || !objects.Text(member.id)) throw CannotRepair("an object stream is damaged");
  }
}

// The stream with the right /Length, when its own does not lead to its end: with sound cross-references, readers trust
// /Length. Its data stay as they are, encrypted or not. No value when the /Length is right.
std::optional<std::string> FileRepair::WithLength(QPDF& document, const FileScan::Object& stream,
                                                  FileWindow& window) const {
  const std::string head = file_->ReadAt(stream.offset, static_cast<std::size_t>(stream.data - stream.offset));
  QPDFObjectHandle parsed = ObjectOf(document, stream.id);
  QPDFObjectHandle length = parsed.isStream() ? parsed.getDict().getKey("/Length") : parsed;
  std::uint64_t bytes = 0;
  if (length.isInteger() && length.getIntValue() >= 0) {
    bytes = static_cast<std::uint64_t>(length.getIntValue());
    const bool fits = bytes <= file_->Size() - stream.data && StreamEndFollows(window, stream.data + bytes);
    if (fits || (!stream.wrongLength && stream.data + bytes == stream.dataEnd)) return std::nullopt;
  }
  const CannotRepair damaged("object " + std::to_string(stream.id.number) + " is damaged");
  try {
    PdfLexer lexer(head);
    lexer.ReadObjectHeader();
    std::optional<DictionaryText> dictionary = DictionaryText::Parse(std::string(lexer.Text(lexer.ReadValue())));
    if (!dictionary) throw damaged;
    // Without the keyword most readers go on to the end of the file.
    const bool ends = stream.dataEnd == file_->Size() || file_->ReadAt(stream.dataEnd, 9) == "endstream";
    const std::uint64_t size = (ends ? stream.dataEnd : file_->Size()) - stream.data;
    if (size > kLargestRepairedStreams) throw CannotRepair("a stream with a wrong length is too large to be copied");
    std::string data = file_->ReadAt(stream.data, static_cast<std::size_t>(size));
    // Readers that rebuild the file would take the copies of objects in it for newer ones.
    const bool rebuilt = document.isEncrypted() || !QuickReader::StartsWithHeader(*file_);
    if (rebuilt && data.find(" 0 obj") != std::string::npos) {
      throw CannotRepair("a stream with a wrong length holds objects");
    }
    // Other readers keep the end of line before the keyword, too; a cipher would take it for a part of its blocks.
    // Where the data lack their end it stays: readers would take the last whole block for the last one, and padding off
    // it.
    if (document.isEncrypted() && stream.dataEnd != file_->Size() && bytes <= data.size()) RemoveEndOfLine(data);
    // The parser has read the data up to the keyword, and shows nothing of deflated data with damage. What readers show
    // of damaged data differs otherwise, so they are not cut off without need.
    const std::size_t keyword = std::min(data.size(), data.find("endobj"));
    if ((keyword < data.size() || bytes > data.size()) && !document.isEncrypted() && parsed.isStream() &&
        IsDeflated(parsed.getDict())) {
      const Inflatable inflatable = Inflate(data);
      // Readers that go by the /Length inflate what follows, too. Of contents that shows more at the end; of a font
      // they may take all or nothing.
      if (inflatable.unfinished && bytes > data.size() && IsFontProgram(parsed.getDict())) {
        throw CannotRepair("the font in object " + std::to_string(stream.id.number) + " is damaged");
      }
      if (inflatable.size >= keyword && inflatable.size < data.size()) {
        // Some readers show what a part of another object inflates to, others end before it.
        if (data.find(" obj", keyword) < inflatable.size) throw damaged;
        data.resize(inflatable.size);
      }
    }
    dictionary->Set("/Length", std::to_string(data.size()));
    return std::to_string(stream.id.number) + ' ' + std::to_string(stream.id.generation) + " obj\n" +
           dictionary->Text() + "\nstream\n" + data + "\nendstream\nendobj\n";
  } catch (const PdfSyntaxError&) {
    throw damaged;
  }
}

// The object whose number is at the offset; null when the scan found none there.
const FileScan::Object* FileRepair::ScannedAt(std::uint64_t offset) {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  const auto found =
      std::lower_bound(objects.begin(), objects.end(), offset,
                       [](const FileScan::Object& object, std::uint64_t place) { return object.offset < place; });
  return found != objects.end() && found->offset == offset ? &*found : nullptr;
}

// Whether a keyword has the place of the object's value. Some readers take it for the value, others for null.
bool FileRepair::IsKeyword(const FileScan::Object& object) const {
  constexpr std::size_t kWindow = 256;
  const std::string text = file_->ReadAt(object.offset, kWindow);
  try {
    PdfLexer lexer(text);
    lexer.ReadObjectHeader();
    lexer.SkipSpace();
    const bool letter = std::isalpha(static_cast<unsigned char>(text[lexer.Position()])) != 0;
    return letter && text.compare(lexer.Position(), 6, "endobj") != 0;
  } catch (const PdfSyntaxError&) {
    return false;
  }
}

// Whether one is a copy of the other, as where a part of the file was written twice.
bool FileRepair::AreCopies(const FileScan::Object& one, const FileScan::Object& other) const {
  constexpr std::size_t kLargestCopy = 64 * 1024;
  const auto text = [&](const FileScan::Object& object) {
    const std::string bytes = file_->ReadAt(object.offset, kLargestCopy);
    const std::uint64_t end = bytes.find("endobj", object.data == 0 ? 0 : object.dataEnd - object.offset);
    return end < bytes.size() ? bytes.substr(0, static_cast<std::size_t>(end)) : std::string();
  };
  const std::string first = text(one);
  return !first.empty() && first == text(other);
}

// Whether the document has trailers and none has the key of the encryption dictionary: it may be of another document,
// and some readers read the file without it.
bool FileRepair::EncryptionIsStray() {
  bool named = false;
  bool rooted = false;
  for (const FileScan::Trailer& trailer : Scan().trailers) {
    rooted = rooted || !LenientEntry(trailer.text, "/Root").empty();
    named = named || !LenientEntry(trailer.text, "/Encrypt").empty();
  }
  return rooted && !named;
}

// To where the file's own cross-references lead rightly, if they are readable and the last of them are a stream.
std::optional<std::set<std::uint64_t>> FileRepair::OffsetsInXrefStreams() const {
  const std::optional<FileTail> own = preferred_.empty() ? std::nullopt : QuickReader::ReadTail(*file_);
  if (!own || own->kind != FileTail::Kind::kStream) return std::nullopt;
  std::set<std::uint64_t> offsets;
  for (const FileTail::KeptObject& object : preferred_) offsets.insert(object.offset);
  return offsets;
}

// Readers agree on the text of a damaged object. They do not where there is another version of it, nor where an object
// may be inside a damaged one. And a damaged catalog would be written anew.
void FileRepair::CheckDamagedObjects(const FileTail& tail) {
  constexpr std::size_t kMostCopies = 16;
  const bool rebuilt = !QuickReader::StartsWithHeader(*file_);
  const std::optional<std::set<std::uint64_t>> led = OffsetsInXrefStreams();
  std::map<std::uint32_t, std::vector<const FileScan::Object*>> versions;
  for (const FileScan::Object& object : Scan().objects) versions[object.id.number].push_back(&object);
  for (const FileTail::KeptObject& kept : *tail.kept) {
    const FileScan::Object* const object = kept.stream == 0 ? ScannedAt(kept.offset + tail.headerOffset) : nullptr;
    if (object == nullptr) continue;
    // poppler takes what a cross-reference stream does not lead to for null, and shows no page after a damaged one.
    const bool missed = led && led->count(kept.offset) == 0;
    if (object->damaged && (missed || kept.id == tail.root || IsKeyword(*object))) {
      throw CannotRepair("object " + std::to_string(kept.id.number) + " is damaged");
    }
    // Readers that rebuild the file and do not find it would not decrypt the update.
    if (rebuilt && object->inside && kept.id == Scan().encryption) {
      throw CannotRepair("the encryption dictionary is damaged");
    }
    const std::vector<const FileScan::Object*>& all = versions[kept.id.number];
    // The update does not keep some readers from rebuilding a file without a header.
    const bool another = rebuilt && std::any_of(all.begin(), all.end(), [&](const auto* other) {
                           return other->offset > object->offset && (other->damaged || other->badKeys);
                         });
    if (!object->damaged && !object->badKeys && !object->inside && !another) continue;
    const bool clear = all.size() <= kMostCopies && std::all_of(all.begin(), all.end(), [&](const auto* other) {
                         return other == object || AreCopies(*object, *other);
                       });
    if (!clear) throw VersionsDiffer(kept.id.number);
  }
}

// What readers make of such damage changes when the cross-references become sound.
void FileRepair::CheckObjects(QPDF& document, const FileTail& tail) {
  const bool encrypted = Scan().encryption.number != 0 || !TrailerEntry("/Encrypt").empty();
  const bool stray = TrailerEntry("/Encrypt") == Scan().encryption.Reference() && EncryptionIsStray();
  if (stray || (encrypted && !document.isEncrypted()) || KeyLengthIsDamaged(document) ||
      EncryptionIsDamaged(document, *file_, tail.headerOffset)) {
    throw CannotRepair("the encryption dictionary is damaged");
  }
  CheckDamagedObjects(tail);
  for (const auto& [key, value] : document.getRoot().getDictAsMap()) {
    if (IsInventedKey(key) && value.isIndirect()) throw CannotRepair("the catalog is damaged");
  }
  for (const QPDFExc& warning : document.getWarnings()) {
    const std::string text = warning.getObject() + warning.getMessageDetail();
    if (IsAboutLackOfMemory(text)) throw std::bad_alloc();
    const bool identifier = text.find("/ID in trailer") != std::string::npos && !TrailerEntry("/ID").empty();
    if (identifier || text.find("encryption") != std::string::npos) {
      throw CannotRepair("the encryption dictionary is damaged");
    }
  }
  QPDFObjectHandle pages = document.getRoot().getKey("/Pages");
  QPDFObjectHandle count = pages.isDictionary() ? pages.getKey("/Count") : pages;
  long long counted = count.isInteger() ? count.getIntValue() : 0;
  // A damaged number is a string to the parser; some readers take its first digits.
  if (count.isString()) counted = std::strtoll(count.getStringValue().c_str(), nullptr, 10);
  if (counted > static_cast<long long>(tail.kept->size())) {
    throw CannotRepair("the page tree counts more pages than there are objects");
  }
}

// What the parser reaches with cross-references that it rebuilds itself has to be there, if not in the same version.
void FileRepair::CompareWithParser(View view, const std::string& password) const {
  bool all = true;
  try {
    const std::shared_ptr<QPDF> repaired = OpenRecovering(view, password);
    std::set<QPDFObjGen> reached;
    VisitReachable(*repaired, [&](QPDFObjectHandle object) { reached.insert(object.getObjGen()); });
    View source = {file_, "", std::nullopt};
    const std::shared_ptr<QPDF> rebuilt = OpenParser(source, password, Recovery::kOn);
    if (rebuilt == nullptr) return;
    ObjectStreams(file_->Size()).Check(*rebuilt);
    const QPDFObjGen root = rebuilt->getRoot().getObjGen();
    VisitReachable(*rebuilt, [&](QPDFObjectHandle object) {
      const QPDFObjGen id = object.getObjGen();
      all = all && (id == root || (reached.count(id) != 0 && SameKind(object, repaired->getObject(id))));
    });
    all = all || rebuilt->getAllPages().empty();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const TooManyTokens&) {
    return;  // what cannot be read at all cannot be compared
  } catch (const std::exception&) {
    return;
  }
  if (!all) throw CannotRepair("another way to repair the file finds other objects");
}

// Puts the streams with a wrong /Length after the file with the right one.
void FileRepair::RepairStreams(QPDF& document, FileTail& tail) {
  FileWindow window(*file_);
  for (FileTail::KeptObject& kept : *tail.kept) {
    const FileScan::Object* const object = kept.stream == 0 ? ScannedAt(kept.offset + tail.headerOffset) : nullptr;
    if (object == nullptr || object->data == 0) continue;
    const std::optional<std::string> stream = WithLength(document, *object, window);
    if (!stream) continue;
    if (tail.repaired.empty()) tail.repaired = "\n";
    kept.offset = file_->Size() + tail.repaired.size() - tail.headerOffset;
    tail.repaired += *stream;
    if (tail.repaired.size() > kLargestRepairedStreams) {
      throw CannotRepair("the streams with wrong lengths are too large to be copied");
    }
  }
}

}  // namespace engine
