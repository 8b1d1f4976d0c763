// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/FileRepair.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <map>
#include <new>
#include <qpdf/QPDFXRefEntry.hh>
#include <set>
#include <utility>

#include "engine/backend/CryptFilters.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/ObjectWriter.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/RawObjects.h"
#include "engine/backend/Soundness.h"
#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/repair/FileWindow.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfName.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

using Kind = FileScan::Kind;
using View = BackendInputSource::View;

// Numbers from here on are for what only the parser sees. Lower ones may be those of missing objects that others refer
// to.
constexpr std::uint32_t kOwnNumbers = 8388000;
// Streams with wrong lengths are copied in memory.
constexpr std::uint64_t kLargestRepairedStreams = 128 * 1024 * 1024;

void AppendBigEndian(std::string& bytes, std::uint64_t value, int width) {
  for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) bytes += static_cast<char>((value >> shift) & 0xFF);
}

// A cross-reference stream (ISO 32000-1, 7.5.8) with its "startxref", to be written at `position`. It has no entry of
// its own, so that the document has no object more than the file.
std::string Section(const std::vector<FileTail::KeptObject>& objects, std::uint32_t number, const std::string& entries,
                    std::uint64_t position) {
  std::string rows;
  std::string index;
  for (std::size_t first = 0; first < objects.size();) {
    std::size_t end = first;
    do {
      const FileTail::KeptObject& object = objects[end];
      rows += object.stream != 0 ? '\2' : '\1';
      AppendBigEndian(rows, object.stream != 0 ? object.stream : object.offset, 8);
      AppendBigEndian(rows, object.stream != 0 ? object.index : object.id.generation, 4);
      ++end;
    } while (end < objects.size() && objects[end].id.number == objects[end - 1].id.number + 1);
    index += std::to_string(objects[first].id.number) + ' ' + std::to_string(end - first) + ' ';
    first = end;
  }
  return std::to_string(number) + " 0 obj\n<< /Type /XRef /W [ 1 8 4 ] /Index [ " + index + "] /Size " +
         std::to_string(number) + entries + " /Length " + std::to_string(rows.size()) + " >>\nstream\n" + rows +
         "\nendstream\nendobj\nstartxref\n" + std::to_string(position) + "\n%%EOF\n";
}

std::optional<ObjectId> ToReference(const std::string& text) {
  try {
    return PdfLexer::ToReference(text);
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

// Whether a catalog's page tree is there and has nothing in it.
bool HasNoPages(QPDFObjectHandle catalog) {
  QPDFObjectHandle pages = catalog.getKey("/Pages");
  return pages.isDictionary() && pages.getKey("/Kids").isArray() && pages.getKey("/Kids").getArrayNItems() == 0;
}

QPDFObjectHandle ObjectOf(QPDF& document, ObjectId id) {
  return document.getObjectByID(static_cast<int>(id.number), static_cast<int>(id.generation));
}

// Cross-references are not rebuilt, as every object is where its entry says. Streams with a wrong length are read as
// far as they go.
std::shared_ptr<QPDF> OpenRecovering(View& view, const std::string& password) {
  std::shared_ptr<QPDF> document = OpenParser(view, password, Recovery::kOff);
  if (document != nullptr) document->setAttemptRecovery(true);
  return document;
}

std::string Text(QPDFObjectHandle value) {
  return value.isIndirect() ? value.unparse() : ObjectWriter().Write(value);
}

void RemoveEndOfLine(std::string& text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  if (!text.empty() && text.back() == '\r') text.pop_back();
}

QPDFObjectHandle DictionaryOf(QPDFObjectHandle object) {
  return object.isStream() ? object.getDict() : object;
}

// Whether an object may be a new version of another.
bool SameKind(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (one.getTypeCode() != other.getTypeCode()) return false;
  if (!DictionaryOf(one).isDictionary()) return true;
  return DictionaryOf(one).getKey("/Type").unparse() == DictionaryOf(other).getKey("/Type").unparse();
}

bool SameObject(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (one.getTypeCode() != other.getTypeCode()) return false;
  if (!one.isStream()) return one.unparseResolved() == other.unparseResolved();
  const std::shared_ptr<Buffer> data = one.getRawStreamData();
  const std::shared_ptr<Buffer> others = other.getRawStreamData();
  return one.getDict().unparse() == other.getDict().unparse() && data->getSize() == others->getSize() &&
         std::equal(data->getBuffer(), data->getBuffer() + data->getSize(), others->getBuffer());
}

// The bytes of the first part of /ID, which stays the same in all versions of a file (ISO 32000-1, 14.4).
std::string FirstIdentifier(const std::string& identifier) {
  try {
    if (identifier.empty() || identifier.front() != '[') return {};
    PdfLexer lexer(identifier, 1);
    const PdfLexer::Value first = lexer.ReadValue();
    const bool isString = first.kind == PdfLexer::Kind::kString || first.kind == PdfLexer::Kind::kHexString;
    return isString ? PdfLexer::ToBytes(lexer.Text(first)) : std::string();
  } catch (const PdfSyntaxError&) {
    return {};
  }
}

// Ends whatever value or stream is open: a hexadecimal string, then strings, arrays and dictionaries however deep.
std::string MakeClosing() {
  constexpr std::size_t kDeepest = 64;
  std::string text = "\n>" + std::string(kDeepest, ')') + '\n';
  for (std::size_t i = 0; i < kDeepest; ++i) text += "]>>";
  return text + "\nendstream\nendobj\n";
}

bool EndsWithMark(const InputFile& file) {
  constexpr std::uint64_t kWindow = 64;
  const std::uint64_t size = std::min(kWindow, file.Size());
  const std::string end = file.ReadAt(file.Size() - size, static_cast<std::size_t>(size));
  const std::size_t mark = end.rfind("%%EOF");
  return mark != std::string::npos &&
         std::all_of(end.begin() + static_cast<std::ptrdiff_t>(mark) + 5, end.end(), PdfLexer::IsSpace);
}

// The trailer's entries that an update repeats.
std::vector<FileTail::Entry> RepeatedEntries(const std::string& trailer) {
  std::vector<FileTail::Entry> entries;
  try {
    const RawDictionary dictionary(trailer);
    for (const RawDictionary::Entry& entry : dictionary.Entries()) {
      if (!QuickReader::IsRepeatedEntry(entry.key)) continue;
      entries.push_back({std::string(entry.key), std::string(dictionary.Text(entry))});
    }
  } catch (const PdfSyntaxError&) {
    entries.clear();
  }
  return entries;
}

}  // namespace

std::optional<FileTail> CompleteTail(QPDF& document, const InputFile& file) {
  constexpr int kInFile = 1;
  constexpr int kInStream = 2;
  FileTail tail;
  try {
    tail.root = PdfLexer::ToReference(Text(document.getTrailer().getKey("/Root")));
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
  tail.headerOffset = QuickReader::HeaderOffset(file);
  for (const std::string& key : document.getTrailer().getKeys()) {
    if (QuickReader::IsRepeatedEntry(key) && !IsInventedKey(key))
      tail.entries.push_back({EscapedName(key), Text(document.getTrailer().getKey(key))});
  }
  std::vector<FileTail::KeptObject> kept;
  for (const auto& [id, entry] : document.getXRefTable()) {
    FileTail::KeptObject object;
    object.id = {static_cast<std::uint32_t>(id.getObj()), static_cast<std::uint32_t>(id.getGen())};
    if (entry.getType() == kInFile && entry.getOffset() > 0) {
      object.offset = static_cast<std::uint64_t>(entry.getOffset());
    } else if (entry.getType() == kInStream) {
      object.stream = static_cast<std::uint32_t>(entry.getObjStreamNumber());
      object.index = static_cast<std::uint32_t>(entry.getObjStreamIndex());
    } else {
      continue;
    }
    if (!kept.empty() && kept.back().id.number == object.id.number) kept.pop_back();
    kept.push_back(object);
  }
  tail.size = kept.empty() ? 1 : kept.back().id.number + 1;
  tail.kept = std::move(kept);
  return tail;
}

const FileScan& FileRepair::Scan() {
  if (!scan_) scan_ = FileScan::Of(*file_, QuickReader::HeaderOffset(*file_));
  return *scan_;
}

const std::vector<FileScan::Object>& FileRepair::Newest() {
  if (!newest_) newest_ = NewestObjects(Scan().objects);
  return *newest_;
}

bool FileRepair::Finds(ObjectId id) {
  const std::vector<FileScan::Object>& objects = Newest();
  const auto found =
      std::lower_bound(objects.begin(), objects.end(), id.number,
                       [](const FileScan::Object& object, std::uint32_t number) { return object.id.number < number; });
  return found != objects.end() && found->id == id && found->kind != Kind::kXrefStream;
}

bool FileRepair::EndIsClosed() {
  return (EndsWithMark(*file_) && QuickReader::HeaderOffset(*file_) == 0) || Closing().empty();
}

std::string FileRepair::Closing() {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  const bool inStream = !objects.empty() && objects.back().data != 0 && objects.back().dataEnd == file_->Size();
  // Readers that rebuild the file read values outside of objects, too.
  const bool rebuilt = QuickReader::HeaderOffset(*file_) > 0 && !EndsWithMark(*file_);
  if (!Scan().damage && !inStream && !rebuilt) return {};
  static const std::string closing = MakeClosing();
  // A repair of this kind may have closed it before.
  const bool closed = !inStream && !rebuilt && WordSearch(*file_, closing).From(*Scan().damage) < file_->Size();
  return closed ? "" : closing;
}

// Of the newest trailer that has a usable one: a value, or a reference to an object that is there.
std::string FileRepair::TrailerEntry(const std::string& key) {
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  for (auto trailer = trailers.rbegin(); trailer != trailers.rend(); ++trailer) {
    std::string value = LenientEntry(trailer->text, key);
    if (value.empty()) continue;
    const std::optional<ObjectId> reference = ToReference(value);
    // An object in an object stream shows later; the encryption dictionary is never in one (ISO 32000-1, 7.5.7).
    if (reference && key == "/Encrypt" && !Finds(*reference)) continue;
    return value;
  }
  const ObjectId encryption = Scan().encryption;
  return key == "/Encrypt" && Finds(encryption) ? encryption.Reference() : std::string();
}

// What one document has encrypted is not in another.
void FileRepair::CheckOneEncryption() {
  std::set<std::string> values;
  for (const FileScan::Trailer& trailer : Scan().trailers) {
    if (!LenientEntry(trailer.text, "/Root").empty()) values.insert(LenientEntry(trailer.text, "/Encrypt"));
  }
  if (values.size() > 1) throw CannotRepair("the file is made of parts that are encrypted differently");
  const bool named = !values.empty() && !values.begin()->empty();
  if (named && TrailerEntry("/Encrypt").empty()) throw CannotRepair("the encryption dictionary is not found");
}

// Why the file seems to be several that were joined: they have objects of the same numbers. Empty for one document.
std::string FileRepair::MixedDocuments() {
  std::set<std::string> identifiers;
  std::set<std::string> roots;
  for (const FileScan::Trailer& trailer : Scan().trailers) {
    const std::string root = LenientEntry(trailer.text, "/Root");
    if (root.empty()) continue;
    roots.insert(root);
    identifiers.insert(FirstIdentifier(LenientEntry(trailer.text, "/ID")));
  }
  // An update may leave the identifier out; it has the same catalog then.
  if (roots.size() == 1) identifiers.erase("");
  if (identifiers.size() > 1) return "the file is made of parts of several documents";
  return HoldsTwoDocuments() ? "the file holds two documents" : "";
}

// Whether there is a header between objects.
bool FileRepair::HoldsTwoDocuments() {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  const std::vector<std::uint64_t>& headers = Scan().headers;
  return std::any_of(headers.begin(), headers.end(), [&](std::uint64_t header) {
    return !objects.empty() && objects.front().offset < header && objects.back().offset > header;
  });
}

View FileRepair::ViewOf(const Kept& kept, const FileTail& tail, const std::string& more) const {
  View view{file_, (tail.repaired.empty() ? "\n" : tail.repaired) + more, std::nullopt};
  std::string entries = " /Root " + tail.root.Reference();
  for (const FileTail::Entry& entry : tail.entries) entries += ' ' + entry.key + ' ' + entry.value;
  const std::uint64_t position = file_->Size() + view.appended.size() - tail.headerOffset;
  const std::uint32_t number = std::max({kOwnNumbers, tail.size, kept.empty() ? 1 : kept.back().id.number + 1});
  view.appended += Section(kept, number, entries, position);
  return view;
}

// With the objects in object streams. Of several objects of one number the last one in the file counts.
FileRepair::Kept FileRepair::AddMembers(QPDF& document, const Kept& plain) {
  std::map<std::uint32_t, FileTail::KeptObject> all;
  std::map<std::uint32_t, std::uint64_t> places;
  for (const FileTail::KeptObject& object : plain) {
    all[object.id.number] = object;
    places[object.id.number] = object.offset;
  }
  ObjectStreams streams(file_->Size());
  const std::uint64_t headerOffset = QuickReader::HeaderOffset(*file_);
  for (const FileScan::Object& object : Newest()) {
    if (object.kind != Kind::kObjectStream || object.id.generation != 0) continue;
    const std::uint64_t place = object.offset - headerOffset;
    const std::vector<std::uint32_t> members = streams.Members(ObjectOf(document, object.id));
    if (members.empty() && !document.isEncrypted()) {
      // It may be encrypted or not.
      throw CannotRepair("an object stream cannot be read");
    }
    for (std::uint32_t index = 0; index < members.size(); ++index) {
      const std::uint32_t number = members[index];
      // A stream cannot be in an object stream.
      if (number == 0 || number == object.id.number) continue;
      const auto [known, added] = places.try_emplace(number, place);
      if (!added && known->second > place) continue;
      known->second = place;
      all[number] = {{number, 0}, 0, object.id.number, index};
    }
  }
  Kept kept;
  for (const auto& [number, object] : all) {
    // What is in a stream that another object has replaced is gone.
    const auto stream = object.stream != 0 ? all.find(object.stream) : all.end();
    if (object.stream != 0 && (stream == all.end() || stream->second.stream != 0)) continue;
    kept.push_back(object);
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

// The newest catalog of a trailer that leads to a page, otherwise any that does, otherwise one that leads to none:
// other readers may find more through it.
std::optional<ObjectId> FileRepair::FindRoot(QPDF& document, const Kept& kept) {
  std::optional<ObjectId> empty;
  const auto leads = [&](ObjectId id) {
    QPDFObjectHandle catalog = ObjectOf(document, id);
    if (!empty && catalog.isDictionary()) empty = id;
    return LeadsToPage(catalog);
  };
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  for (auto trailer = trailers.rbegin(); trailer != trailers.rend(); ++trailer) {
    const std::optional<ObjectId> root = ToReference(LenientEntry(trailer->text, "/Root"));
    if (root && leads(*root)) return root;
  }
  const std::vector<FileScan::Object>& objects = Scan().objects;
  for (auto object = objects.rbegin(); object != objects.rend(); ++object) {
    if (object->kind == Kind::kCatalog && leads(object->id)) return object->id;
  }
  for (auto object = kept.rbegin(); object != kept.rend(); ++object) {
    if (object->stream == 0 || !ObjectOf(document, object->id).isDictionaryOfType("/Catalog")) continue;
    if (leads(object->id)) return object->id;
  }
  return empty;
}

// Whether no trailer and no catalog leads anywhere else.
bool FileRepair::IsOnlyRoot(ObjectId root) {
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  const bool named = std::all_of(trailers.begin(), trailers.end(), [&](const FileScan::Trailer& trailer) {
    return ToReference(LenientEntry(trailer.text, "/Root")).value_or(root) == root;
  });
  const std::vector<FileScan::Object>& objects = Scan().objects;
  const auto catalogs = std::count_if(objects.begin(), objects.end(), [&](const FileScan::Object& object) {
    return object.kind == Kind::kCatalog || object.id.number == root.number;
  });
  return named && catalogs <= 1;
}

FileTail FileRepair::MakeTail(ObjectId root, Kept kept) {
  FileTail tail;
  tail.headerOffset = QuickReader::HeaderOffset(*file_);
  tail.root = root;
  tail.size = 1;
  // Numbers of objects that are not kept are not given to new ones either.
  if (!Newest().empty()) tail.size = std::max(tail.size, Newest().back().id.number + 1);
  if (!kept.empty()) tail.size = std::max(tail.size, kept.back().id.number + 1);
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  for (auto trailer = trailers.rbegin(); trailer != trailers.rend() && tail.entries.empty(); ++trailer) {
    if (ToReference(LenientEntry(trailer->text, "/Root")) == root) tail.entries = RepeatedEntries(trailer->text);
  }
  for (const char* const key : {"/Info", "/ID", "/Encrypt"}) {
    const std::string value = TrailerEntry(key);
    if (!value.empty()) tail.SetValue(key, value);
  }
  const bool streams = std::any_of(kept.begin(), kept.end(), [](const auto& object) { return object.stream != 0; });
  tail.kind = streams ? FileTail::Kind::kStream : FileTail::Kind::kTable;
  tail.kept = std::move(kept);
  return tail;
}

// The stream with the right /Length, when its own does not lead to its end: with sound cross-references, readers trust
// /Length. Its data stay as they are, encrypted or not. No value when the /Length is right.
std::optional<std::string> FileRepair::WithLength(QPDF& document, const FileScan::Object& stream,
                                                  FileWindow& window) const {
  const std::string head = file_->ReadAt(stream.offset, static_cast<std::size_t>(stream.data - stream.offset));
  try {
    PdfLexer lexer(head);
    lexer.ReadObjectHeader();
    std::optional<DictionaryText> dictionary = DictionaryText::Parse(std::string(lexer.Text(lexer.ReadValue())));
    if (!dictionary) return std::nullopt;
    QPDFObjectHandle parsed = ObjectOf(document, stream.id);
    QPDFObjectHandle length = parsed.isStream() ? parsed.getDict().getKey("/Length") : parsed;
    if (length.isInteger() && length.getIntValue() >= 0) {
      const auto bytes = static_cast<std::uint64_t>(length.getIntValue());
      if (bytes <= file_->Size() - stream.data && StreamCanEndAt(window, stream.data + bytes)) return std::nullopt;
    }
    const std::uint64_t size = stream.dataEnd - stream.data;
    if (size > kLargestRepairedStreams) throw CannotRepair("a stream with a wrong length is too large to be copied");
    std::string data = file_->ReadAt(stream.data, static_cast<std::size_t>(size));
    // Readers differ about where one that runs into another object ends.
    if (data.find(" 0 obj") != std::string::npos) throw CannotRepair("a stream with a wrong length holds objects");
    // Other readers keep the end of line before the keyword, too; a cipher would take it for a part of its blocks.
    if (document.isEncrypted() && stream.dataEnd != file_->Size()) RemoveEndOfLine(data);
    dictionary->Set("/Length", std::to_string(data.size()));
    return std::to_string(stream.id.number) + ' ' + std::to_string(stream.id.generation) + " obj\n" +
           dictionary->Text() + "\nstream\n" + data + "\nendstream\nendobj\n";
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
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

// Readers agree on the text of a damaged object. They do not where there is another version of it, nor where an object
// may stand inside a damaged one. And a damaged catalog would be written anew.
void FileRepair::CheckDamagedObjects(const FileTail& tail) {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  std::map<std::uint32_t, std::size_t> versions;
  for (const FileScan::Object& object : objects) ++versions[object.id.number];
  for (const FileTail::KeptObject& kept : *tail.kept) {
    const FileScan::Object* const object = kept.stream == 0 ? ScannedAt(kept.offset + tail.headerOffset) : nullptr;
    if (object == nullptr) continue;
    const bool unclear = versions[kept.id.number] > 1 && (object->damaged || object->inside);
    if (unclear || (object->damaged && kept.id == tail.root)) {
      throw CannotRepair("object " + std::to_string(kept.id.number) + " is damaged");
    }
  }
}

// What readers make of such damage changes when the cross-references become sound.
void FileRepair::CheckObjects(QPDF& document, const FileTail& tail) {
  const bool encrypted = Scan().encryption.number != 0 || !TrailerEntry("/Encrypt").empty();
  if ((encrypted && !document.isEncrypted()) || EncryptionIsDamaged(document)) {
    throw CannotRepair("the encryption dictionary is damaged");
  }
  CheckDamagedObjects(tail);
  for (const auto& [key, value] : document.getRoot().getDictAsMap()) {
    if (IsInventedKey(key) && value.isIndirect()) throw CannotRepair("the catalog is damaged");
  }
  for (const QPDFExc& warning : document.getWarnings()) {
    const std::string text = warning.getObject() + warning.getMessageDetail();
    if (TellsOfLackOfMemory(text)) throw std::bad_alloc();
    const bool identifier = text.find("/ID in trailer") != std::string::npos && !TrailerEntry("/ID").empty();
    if (identifier || text.find("encryption") != std::string::npos) {
      throw CannotRepair("the encryption dictionary is damaged");
    }
  }
  QPDFObjectHandle pages = document.getRoot().getKey("/Pages");
  QPDFObjectHandle count = pages.isDictionary() ? pages.getKey("/Count") : pages;
  if (count.isInteger() && count.getIntValue() > static_cast<long long>(tail.kept->size())) {
    throw CannotRepair("the page tree counts more pages than there are objects");
  }
}

// What the parser reaches with cross-references that it rebuilds itself has to be there.
void FileRepair::CompareWithParser(View view, const std::string& password) const {
  bool all = true;
  try {
    std::set<QPDFObjGen> reached;
    VisitReachable(*OpenRecovering(view, password),
                   [&](QPDFObjectHandle object) { reached.insert(object.getObjGen()); });
    view = {file_, "", std::nullopt};
    const std::shared_ptr<QPDF> rebuilt = OpenParser(view, password, Recovery::kOn);
    if (rebuilt == nullptr) return;
    ObjectStreams(file_->Size()).Check(*rebuilt);
    const QPDFObjGen root = rebuilt->getRoot().getObjGen();
    VisitReachable(*rebuilt, [&](QPDFObjectHandle object) {
      const QPDFObjGen id = object.getObjGen();
      all = all && (id == root || reached.count(id) != 0);
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

// Opens the file with these objects and a catalog that is not in the file: the parser insists on one.
std::shared_ptr<QPDF> FileRepair::OpenWithStandIn(Kept kept, const std::string& password) {
  FileTail tail = MakeTail({}, kept);
  tail.size = std::max(tail.size, kOwnNumbers);
  std::string text;
  const auto add = [&](const std::string& body) {
    const ObjectId id{tail.size++, 0};
    kept.push_back({id, file_->Size() + 1 + text.size() - tail.headerOffset});
    text += std::to_string(id.number) + " 0 obj\n" + body + "\nendobj\n";
    return id;
  };
  const ObjectId pages = add("<< /Type /Pages /Kids [ ] /Count 0 >>");
  tail.root = add("<< /Type /Catalog /Pages " + pages.Reference() + " >>");
  View view = ViewOf(kept, tail, text);
  return OpenRecovering(view, password);
}

// Objects to which the file's own cross-references lead replace others of the same number.
void FileRepair::PutPreferred(Kept& kept) const {
  for (const FileTail::KeptObject& object : preferred_) {
    const auto at =
        std::lower_bound(kept.begin(), kept.end(), object.id.number,
                         [](const FileTail::KeptObject& one, std::uint32_t number) { return one.id.number < number; });
    if (at != kept.end() && at->id.number == object.id.number) {
      *at = object;
    } else {
      kept.insert(at, object);
    }
  }
}

// The newest version of a file with something else after it.
std::optional<FileRepair::Version> FileRepair::FindEarlierVersion(const std::string& password) {
  const std::vector<std::uint64_t>& ends = Scan().ends;
  for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
    View view{file_, "\n%%EOF\n", *end};
    try {
      std::shared_ptr<QPDF> document = OpenParser(view, password, Recovery::kOff);
      if (document == nullptr) continue;
      ObjectStreams(file_->Size()).Check(*document);
      if (!LeadsToPage(document->getRoot()) || !EntriesLeadToObjects(*document, *file_, *this)) continue;
      std::optional<FileTail> tail = CompleteTail(*document, *file_);
      if (!tail) continue;
      // Numbers in the rest of the file are not given to new objects.
      if (!Newest().empty()) tail->size = std::max(tail->size, Newest().back().id.number + 1);
      return Version{*end, std::move(*tail), std::move(document)};
    } catch (const std::exception&) {
      // The next one.
    }
  }
  return std::nullopt;
}

// Whether what stands after the version's end is an update of it: a trailer there continues its cross-references, or
// has its identifier (ISO 32000-1, 7.5.6 and 14.4).
bool FileRepair::IsUpdated(const Version& version) {
  const std::string identifier = FirstIdentifier(version.tail.Value("/ID"));
  const std::string digits = file_->ReadAt(version.end - std::min<std::uint64_t>(version.end, 20), 20);
  return std::any_of(Scan().trailers.begin(), Scan().trailers.end(), [&](const FileScan::Trailer& trailer) {
    if (trailer.offset < version.end) return false;
    const std::string previous = LenientEntry(trailer.text, "/Prev");
    const std::size_t start = digits.size() - std::min(digits.size(), previous.size());
    if (!previous.empty() && digits.compare(start, std::string::npos, previous) == 0) return true;
    return !identifier.empty() && FirstIdentifier(LenientEntry(trailer.text, "/ID")) == identifier;
  });
}

// Whether a catalog that stands or is named after the version's end leads, or may lead, to pages, too.
bool FileRepair::AnotherRootAfter(const Version& version, QPDF& rebuilt) {
  const auto leads = [&](ObjectId id) { return id != version.tail.root && LeadsToPage(ObjectOf(rebuilt, id)); };
  for (const FileScan::Trailer& trailer : Scan().trailers) {
    const std::optional<ObjectId> root = ToReference(LenientEntry(trailer.text, "/Root"));
    if (trailer.offset >= version.end && root && leads(*root)) return true;
  }
  return std::any_of(Scan().objects.begin(), Scan().objects.end(), [&](const FileScan::Object& object) {
    if (object.offset < version.end) return false;
    // A catalog may be in an object stream.
    return object.kind == Kind::kObjectStream || (object.kind == Kind::kCatalog && leads(object.id));
  });
}

// Whether the version is the document, and objects after its end are not. mupdf and libqpdf look for "startxref" in the
// last kilobyte of a file, poppler in the last 24; a reader that does not find it takes the last object of each number.
// So the version counts where rebuilding leads to nothing else; where readers see two documents, the file is refused.
bool FileRepair::EarlierVersionCounts(const Version& version, QPDF& rebuilt, const Kept& kept, bool rebuiltHasPages) {
  constexpr std::uint64_t kFarthestStartXref = 24 * 1024;
  std::set<std::uint32_t> later;
  for (const FileTail::KeptObject& object : kept) {
    const bool inFile = object.stream == 0 && object.offset + version.tail.headerOffset >= version.end;
    if (inFile || (object.stream != 0 && later.count(object.stream) != 0)) later.insert(object.id.number);
  }
  for (const FileTail::KeptObject& object : kept) {
    if (object.stream != 0 && later.count(object.stream) != 0) later.insert(object.id.number);
  }
  if (later.empty() || IsUpdated(version)) return false;
  const bool alwaysRebuilt = version.tail.headerOffset > 0;
  if (!rebuiltHasPages && !alwaysRebuilt) return true;
  bool displaced = false;
  bool plausible = true;
  VisitReachable(*version.document, [&](QPDFObjectHandle object) {
    if (later.count(static_cast<std::uint32_t>(object.getObjectID())) == 0) return;
    const QPDFObjectHandle other = rebuilt.getObject(object.getObjGen());
    displaced = displaced || !SameObject(object, other);
    plausible = plausible && SameKind(object, other);
  });
  const char* const kMixed = "objects of another document follow the end of the file";
  // Some readers take the last object of each number after the update, too.
  if (displaced && alwaysRebuilt) throw CannotRepair(kMixed);
  if (!rebuiltHasPages) return true;
  const bool another = AnotherRootAfter(version, rebuilt);
  if (!displaced && !another) return true;
  const bool found = version.end == Scan().ends.back() && file_->Size() - version.end <= kFarthestStartXref;
  if (found || another || !plausible) throw CannotRepair(kMixed);
  return false;
}

FileRepair::Result FileRepair::Open(const std::string& password) {
  const std::uint64_t headerOffset = QuickReader::HeaderOffset(*file_);
  Kept kept;
  for (const FileScan::Object& object : Newest()) {
    if (object.kind == Kind::kXrefStream || object.offset < headerOffset) continue;
    kept.push_back({object.id, object.offset - headerOffset});
  }
  PutPreferred(kept);
  const bool streams = std::any_of(Newest().begin(), Newest().end(),
                                   [](const FileScan::Object& object) { return object.kind == Kind::kObjectStream; });
  CheckOneEncryption();
  const std::string mixed = MixedDocuments();
  const bool followed = !Scan().ends.empty() && !Newest().empty() && Scan().objects.back().offset > Scan().ends.front();
  std::optional<Version> earlier = followed ? FindEarlierVersion(password) : std::nullopt;
  if (!mixed.empty() && !earlier) throw CannotRepair(mixed);
  std::shared_ptr<QPDF> document = OpenWithStandIn(kept, password);
  if (document != nullptr && streams) {
    const Kept plain = kept;
    kept = AddMembers(*document, plain);
    document.reset();
    document = OpenWithStandIn(kept, password);
    if (document == nullptr) return {};
    kept = WithoutUnreadableMembers(*document, kept, plain);
    document.reset();
    document = OpenWithStandIn(kept, password);
    if (document != nullptr) CheckMembers(*document, kept);
  }
  if (document == nullptr) return {};
  const std::optional<ObjectId> root = FindRoot(*document, kept);
  const bool pages = root && LeadsToPage(ObjectOf(*document, *root));
  // Readers agree on the only catalog, even if what they make of its page tree differs. They do not always agree on
  // what is in object streams.
  const bool severalRoots = root && (!ObjectOf(*document, *root).hasKey("/Pages") || !IsOnlyRoot(*root));
  const bool noPages = root && HasNoPages(ObjectOf(*document, *root));
  const bool counts = earlier && EarlierVersionCounts(*earlier, *document, kept, pages);
  if (!counts && !mixed.empty()) throw CannotRepair(mixed);
  if (!counts && pages) earlier.reset();
  if (!pages && !followed) earlier = FindEarlierVersion(password);
  document.reset();
  Result result;
  if (!root && !earlier) throw EngineError(kErrorDamaged, "no catalog");
  if (!pages && !earlier && !noPages && (severalRoots || streams)) throw CannotRepair("the pages are not found");
  result.tail = earlier ? std::move(earlier->tail) : MakeTail(*root, std::move(kept));
  // Readers that read the file from its start would take the update for a part of that value or stream.
  result.tail.repaired = Closing();
  result.view = ViewOf(*result.tail.kept, result.tail, "");
  result.document = OpenRecovering(result.view, password);
  if (result.document == nullptr) return result;
  CheckObjects(*result.document, result.tail);
  CompareWithParser(result.view, password);
  const std::size_t before = result.tail.repaired.size();
  RepairStreams(*result.document, result.tail);
  if (result.tail.repaired.size() == before) return result;
  result.view = ViewOf(*result.tail.kept, result.tail, "");
  result.document = OpenRecovering(result.view, password);
  return result;
}

}  // namespace engine
