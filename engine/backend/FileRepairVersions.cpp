// SPDX-License-Identifier: Apache-2.0
// Of a file whose end something follows: whether that is an update or another document.
#include <algorithm>
#include <exception>
#include <set>
#include <utility>

#include "engine/backend/CompleteTail.h"
#include "engine/backend/FileRepair.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/Soundness.h"
#include "engine/base/InputFile.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

using Kind = FileScan::Kind;
using View = BackendInputSource::View;

bool SameObject(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (one.getTypeCode() != other.getTypeCode()) return false;
  if (!one.isStream()) return one.unparseResolved() == other.unparseResolved();
  const std::shared_ptr<Buffer> data = one.getRawStreamData();
  const std::shared_ptr<Buffer> others = other.getRawStreamData();
  return one.getDict().unparse() == other.getDict().unparse() && data->getSize() == others->getSize() &&
         std::equal(data->getBuffer(), data->getBuffer() + data->getSize(), others->getBuffer());
}

}  // namespace

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
      // Streams with a wrong length are read from here on: every object is where its entry says.
      document->setAttemptRecovery(true);
      return Version{*end, std::move(*tail), std::move(document)};
    } catch (const std::exception&) {
      // The next one.
    }
  }
  return std::nullopt;
}

// Whether other versions of objects follow the last end of the file. Some readers show the file as it was before.
bool FileRepair::UpdateIsCutOff() {
  const std::vector<FileScan::Object>& objects = Scan().objects;
  if (Scan().ends.empty()) return false;
  std::set<std::uint32_t> older;
  return std::any_of(objects.begin(), objects.end(), [&](const FileScan::Object& object) {
    if (object.offset > Scan().ends.back()) return older.count(object.id.number) != 0;
    older.insert(object.id.number);
    return false;
  });
}

// Whether what follows the version's end is an update of it: a trailer there continues its cross-references, or
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

// Whether a catalog's text has a page tree. Where other objects have its number, the parser does not read it.
bool FileRepair::NamesPages(const FileScan::Object& catalog) const {
  constexpr std::size_t kLargestCatalog = 64 * 1024;
  const std::string text = file_->ReadAt(catalog.offset, kLargestCatalog);
  return text.substr(0, text.find("endobj")).find("/Pages") != std::string::npos;
}

// Whether after the version's end there is, or may be, a catalog with a page tree, whatever that leads to.
bool FileRepair::CatalogAfter(const Version& version, QPDF& rebuilt) {
  bool streams = false;
  for (const FileScan::Object& object : Scan().objects) {
    if (object.offset < version.end) continue;
    streams = streams || object.kind == Kind::kObjectStream;
    if (object.kind == Kind::kCatalog && NamesPages(object)) return true;
  }
  return std::any_of(Scan().trailers.begin(), Scan().trailers.end(), [&](const FileScan::Trailer& trailer) {
    const std::optional<ObjectId> root = PdfLexer::FindReference(LenientEntry(trailer.text, "/Root"));
    if (trailer.offset < version.end || !root) return false;
    QPDFObjectHandle catalog = ObjectOf(rebuilt, *root);
    return streams || (catalog.isDictionary() && catalog.getDictAsMap().count("/Pages") != 0);
  });
}

// Whether a catalog that is, or is named, after the version's end leads, or may lead, to pages, too.
bool FileRepair::AnotherRootAfter(const Version& version, QPDF& rebuilt) {
  const auto leads = [&](ObjectId id) { return id != version.tail.root && LeadsToPage(ObjectOf(rebuilt, id)); };
  for (const FileScan::Trailer& trailer : Scan().trailers) {
    const std::optional<ObjectId> root = PdfLexer::FindReference(LenientEntry(trailer.text, "/Root"));
    if (trailer.offset >= version.end && root && leads(*root)) return true;
  }
  return std::any_of(Scan().objects.begin(), Scan().objects.end(), [&](const FileScan::Object& object) {
    if (object.offset < version.end) return false;
    // A catalog may be in an object stream.
    if (object.kind == Kind::kObjectStream) return true;
    return object.kind == Kind::kCatalog && object.id != version.tail.root && (NamesPages(object) || leads(object.id));
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
  const char* const kMixed = "objects of another document follow the end of the file";
  if (!rebuiltHasPages && !alwaysRebuilt) {
    // Other readers may find pages where the parser finds none.
    if (CatalogAfter(version, rebuilt)) throw OtherDocument(kMixed);
    return true;
  }
  bool displaced = false;
  bool plausible = true;
  VisitReachable(*version.document, [&](QPDFObjectHandle object) {
    if (later.count(static_cast<std::uint32_t>(object.getObjectID())) == 0) return;
    const QPDFObjectHandle other = rebuilt.getObject(object.getObjGen());
    displaced = displaced || !SameObject(object, other);
    plausible = plausible && SameKind(object, other);
  });
  // Some readers take the last object of each number after the update, too.
  if (displaced && alwaysRebuilt) throw OtherDocument(kMixed);
  if (!rebuiltHasPages) return true;
  const bool another = AnotherRootAfter(version, rebuilt);
  if (!displaced && !another) return true;
  const bool found = version.end == Scan().ends.back() && file_->Size() - version.end <= kFarthestStartXref;
  if (found || another || !plausible) throw OtherDocument(kMixed);
  return false;
}

}  // namespace engine
