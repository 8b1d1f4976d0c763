// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/FileRepair.h"

#include <algorithm>
#include <set>
#include <utility>

#include "engine/backend/ObjectIds.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/repair/FileWindow.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

using Kind = FileScan::Kind;
using View = BackendInputSource::View;

// Numbers from here on are for what only the parser sees. Lower ones may be those of missing objects that others refer
// to.
constexpr std::uint32_t kOwnNumbers = 8388000;

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

// Whether a catalog's page tree is there and has nothing in it.
bool HasNoPages(QPDFObjectHandle catalog) {
  QPDFObjectHandle pages = catalog.getKey("/Pages");
  return pages.isDictionary() && pages.getKey("/Kids").isArray() && pages.getKey("/Kids").getArrayNItems() == 0;
}

// Values that are nested deeper are not closed.
constexpr std::size_t kDeepest = 64;

// Ends an open string of either kind.
std::string StringEnds() {
  return "\n>" + std::string(kDeepest, ')') + '\n';
}

// Ends whatever value or stream is open: strings, then dictionaries and, unless these are left out, arrays.
std::string MakeClosing(bool arrays = true) {
  std::string containers;
  for (std::size_t i = 0; i < kDeepest; ++i) containers += arrays ? "]>>" : ">>";
  return StringEnds() + containers + "\nendstream\nendobj\n";
}

bool EndsWithMark(const InputFile& file) {
  constexpr std::uint64_t kWindow = 64;
  const std::uint64_t size = std::min(kWindow, file.Size());
  const std::string end = file.ReadAt(file.Size() - size, static_cast<std::size_t>(size));
  const std::size_t mark = end.rfind("%%EOF");
  return mark != std::string::npos &&
         std::all_of(end.begin() + static_cast<std::ptrdiff_t>(mark) + 5, end.end(), PdfLexer::IsSpace);
}

// Whether the first thing like a header, in the bytes where readers look for one, is after others and has no version.
// Some readers count offsets from there, others from the start of the file.
bool HeaderIsDoubtful(const InputFile& file) {
  constexpr std::size_t kWindow = 1024;
  const std::size_t header = file.ReadAt(0, kWindow).find("%PDF");
  return header != std::string::npos && header > 0 && header != QuickReader::HeaderOffset(file);
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

QPDFObjectHandle FileRepair::ObjectOf(QPDF& document, ObjectId id) {
  return document.getObjectByID(static_cast<int>(id.number), static_cast<int>(id.generation));
}

std::shared_ptr<QPDF> FileRepair::OpenRecovering(View& view, const std::string& password) {
  std::shared_ptr<QPDF> document = OpenParser(view, password, Recovery::kOff);
  if (document != nullptr) document->setAttemptRecovery(true);
  return document;
}

std::string FileRepair::FirstIdentifier(const std::string& identifier) {
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

const FileScan& FileRepair::Scan() {
  if (!scan_) scan_ = FileScan::Of(*file_, QuickReader::HeaderOffset(*file_));
  return *scan_;
}

const std::vector<FileScan::Object>& FileRepair::Newest() {
  if (!newest_) newest_ = NewestObjects(Scan().objects);
  return *newest_;
}

// The newest object with this number and generation; null when there is none.
const FileScan::Object* FileRepair::Find(ObjectId id) {
  const std::vector<FileScan::Object>& objects = Newest();
  const auto found =
      std::lower_bound(objects.begin(), objects.end(), id.number,
                       [](const FileScan::Object& object, std::uint32_t number) { return object.id.number < number; });
  return found != objects.end() && found->id == id ? &*found : nullptr;
}

bool FileRepair::Finds(ObjectId id) {
  return Find(id) != nullptr;
}

// Whether the page tree leads to a cross-reference stream. Some readers count it as a page.
bool FileRepair::HasXrefStreamAsPage(QPDFObjectHandle catalog) {
  bool found = false;
  VisitPageTree(catalog, [&](QPDFObjectHandle node) {
    const FileScan::Object* const object = Find(IdOf(node.getObjGen()));
    found = node.isNull() && object != nullptr && object->kind == Kind::kXrefStream;
    return !found;
  });
  return found;
}

bool FileRepair::EndIsClosed() {
  return (EndsWithMark(*file_) && QuickReader::StartsWithHeader(*file_)) || Closing().empty();
}

bool FileRepair::LengthsAreRight() {
  return std::none_of(Newest().begin(), Newest().end(),
                      [](const FileScan::Object& object) { return object.wrongLength; });
}

std::string FileRepair::Closing() {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  const bool inStream = !objects.empty() && objects.back().data != 0 && objects.back().dataEnd == file_->Size();
  // Readers that rebuild the file read values outside of objects, too.
  const bool rebuilt = !QuickReader::StartsWithHeader(*file_) && !EndsWithMark(*file_);
  if (!Scan().damage && !inStream && !rebuilt) return {};
  if (inStream || rebuilt) return MakeClosing();
  // A repair of this kind may have closed it before.
  static const std::string ends = StringEnds();
  if (WordSearch(*file_, ends).From(*Scan().damage) < file_->Size()) return {};
  // With objects after it, readers that took them for a part of an array did not read it. They are not to read it now.
  // A dictionary that one of them reads to the end of the file would end with the first one of the update.
  return MakeClosing(objects.empty() || objects.back().offset <= *Scan().damage);
}

// Of the newest trailer that has a usable one: a value, or a reference to an object that is there.
std::string FileRepair::TrailerEntry(const std::string& key) {
  const std::vector<FileScan::Trailer>& trailers = Scan().trailers;
  for (auto trailer = trailers.rbegin(); trailer != trailers.rend(); ++trailer) {
    std::string value = LenientEntry(trailer->text, key);
    if (value.empty()) continue;
    const std::optional<ObjectId> reference = PdfLexer::FindReference(value);
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
  if (values.size() > 1) throw OtherDocument("the file is made of parts that are encrypted differently");
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
    const std::optional<ObjectId> root = PdfLexer::FindReference(LenientEntry(trailer->text, "/Root"));
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
    return PdfLexer::FindReference(LenientEntry(trailer.text, "/Root")).value_or(root) == root;
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
    if (PdfLexer::FindReference(LenientEntry(trailer->text, "/Root")) == root)
      tail.entries = RepeatedEntries(trailer->text);
  }
  for (const char* const key : {"/Info", "/ID", "/Encrypt"}) {
    const std::string value = TrailerEntry(key);
    if (!value.empty()) tail.SetValue(key, value);
  }
  tail.kept = std::move(kept);
  return tail;
}

// Opens the file with these objects and a catalog that is not in the file: the parser insists on one.
std::shared_ptr<QPDF> FileRepair::OpenWithTemporaryCatalog(Kept kept, const std::string& password) {
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
  if (HeaderIsDoubtful(*file_)) throw CannotRepair("the header is damaged");
  CheckOneEncryption();
  const std::string mixed = MixedDocuments();
  const bool followed = !Scan().ends.empty() && !Newest().empty() && Scan().objects.back().offset > Scan().ends.front();
  std::optional<Version> earlier = followed ? FindEarlierVersion(password) : std::nullopt;
  if (!mixed.empty() && !earlier) throw OtherDocument(mixed);
  const bool latest = earlier && earlier->end == Scan().ends.back();
  if (!latest && UpdateIsCutOff()) throw CannotRepair("an update is cut off, and the file before it is damaged");
  std::shared_ptr<QPDF> document = OpenWithTemporaryCatalog(kept, password);
  if (document != nullptr && streams) {
    const Kept plain = kept;
    kept = AddMembers(*document, plain);
    document.reset();
    document = OpenWithTemporaryCatalog(kept, password);
    if (document == nullptr) return {};
    kept = WithoutUnreadableMembers(*document, kept, plain);
    document.reset();
    document = OpenWithTemporaryCatalog(kept, password);
    if (document != nullptr) CheckMembers(*document, kept);
  }
  if (document == nullptr) return {};
  const std::optional<ObjectId> root = FindRoot(*document, kept);
  const bool pages = root && LeadsToPage(ObjectOf(*document, *root));
  // Readers agree on the only catalog, even if what they make of its page tree differs. They do not always agree on
  // what is in object streams.
  const bool severalRoots = root && (!ObjectOf(*document, *root).hasKey("/Pages") || !IsOnlyRoot(*root));
  const bool noPages = root && HasNoPages(ObjectOf(*document, *root));
  if (root && HasXrefStreamAsPage(ObjectOf(*document, *root))) throw CannotRepair("the pages are damaged");
  const bool counts = earlier && EarlierVersionCounts(*earlier, *document, kept, pages);
  if (!counts && !mixed.empty()) throw OtherDocument(mixed);
  if (!counts && !pages && earlier && IsUpdated(*earlier)) throw CannotRepair("an update is damaged");
  if (!counts && pages) earlier.reset();
  if (!pages && !followed) earlier = FindEarlierVersion(password);
  document.reset();
  Result result;
  if (!root && !earlier) throw EngineError(kErrorDamaged, "no catalog");
  if (!pages && !earlier && !noPages && (severalRoots || streams)) throw CannotRepair("the pages are not found");
  result.tail = earlier ? std::move(earlier->tail) : MakeTail(*root, std::move(kept));
  // Readers that read the file from its start would take the update for a part of that value or stream.
  // Some read what is outside of objects, too, when bytes are before the header.
  result.tail.repaired = QuickReader::StartsWithHeader(*file_) ? Closing() : MakeClosing();
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
