// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/Soundness.h"

#include <algorithm>
#include <map>
#include <optional>
#include <qpdf/QPDFXRefEntry.hh>
#include <vector>

#include "engine/backend/ObjectIds.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/XrefEntry.h"
#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/repair/FileWindow.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

using XrefTable = std::map<QPDFObjGen, QPDFXRefEntry>;

struct Place {
  std::uint64_t offset;
  ObjectId id;
};

// The entries that name a place in the file, in the order of the places.
std::vector<Place> PlacesOf(QPDF& document, std::uint64_t headerOffset) {
  std::vector<Place> places;
  for (const auto& [id, entry] : document.getXRefTable()) {
    // Some producers write offset 0 for an object that is not there.
    if (entry.getType() != kInFile || entry.getOffset() <= 0) continue;
    places.push_back({headerOffset + static_cast<std::uint64_t>(entry.getOffset()), IdOf(id)});
  }
  std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.offset < b.offset; });
  return places;
}

// The number of the object that is at the offset.
std::optional<ObjectId> ObjectAt(FileWindow& window, std::uint64_t offset) {
  constexpr std::size_t kHeader = 64;
  return PdfLexer::FindObjectHeader(window.At(offset, kHeader));
}

bool IsObjectAt(FileWindow& window, const Place& place) {
  return ObjectAt(window, place.offset) == place.id;
}

// Whether the object refers to one that has no entry but is in the file.
bool Dangles(QPDFObjectHandle object, const XrefTable& table, FileRepair& repair) {
  const auto lost = [&](const QPDFObjectHandle& value) {
    const QPDFObjGen id = value.getObjGen();
    return id.isIndirect() && table.count(id) == 0 && repair.Finds(IdOf(id));
  };
  if (lost(object)) return true;
  if (!object.isDictionary()) return false;
  for (const auto& [key, value] : object.getDictAsMap()) {
    if (lost(value)) return true;
    if (!QPDFObjectHandle(value).isArray()) continue;
    for (const QPDFObjectHandle& item : QPDFObjectHandle(value).getArrayAsVector()) {
      if (lost(item)) return true;
    }
  }
  return false;
}

bool PagesAreThere(QPDF& document, FileRepair& repair) {
  QPDFObjectHandle catalog = document.getRoot();
  const XrefTable table = document.getXRefTable();
  const bool gaps = table.empty() || static_cast<std::size_t>(table.rbegin()->first.getObj()) > table.size();
  if (!gaps) return LeadsToPage(catalog);
  bool sound = !Dangles(catalog, table, repair);
  VisitPageTree(catalog, [&](QPDFObjectHandle node) {
    sound = sound && !Dangles(node, table, repair);
    return sound;
  });
  return sound && LeadsToPage(catalog);
}

}  // namespace

bool EntriesLeadToObjects(QPDF& document, const InputFile& file, FileRepair& repair) {
  constexpr std::size_t kBlock = 4096;  // objects may be far apart
  FileWindow window(file, kBlock);
  const std::vector<Place> places = PlacesOf(document, QuickReader::HeaderOffset(file));
  // Some readers do not read a section with entries for numbers beyond /Size.
  QPDFObjectHandle size = document.getTrailer().getKey("/Size");
  const auto mayBeMissing = [&](ObjectId id) {
    return size.isInteger() && id.number < size.getUIntValue() && !repair.Finds(id);
  };
  const XrefTable table = document.getXRefTable();
  const auto hasEntry = [&](ObjectId id) { return table.count(IdOf(id)) != 0; };
  return std::all_of(places.begin(), places.end(), [&](const Place& place) {
    const std::optional<ObjectId> found = ObjectAt(window, place.offset);
    if (found == place.id) return true;
    // Some readers take an object that they meet here for the one of its number.
    return !(found && hasEntry(*found)) && mayBeMissing(place.id);
  });
}

bool IsSound(QPDF& document, const InputFile& file, FileRepair& repair) {
  QPDFObjectHandle size = document.getTrailer().getKey("/Size");
  if (size.isInteger() && size.getIntValue() > QuickReader::kLargestSize) return false;
  return !HasInventedKeys(document.getTrailer()) && EntriesLeadToObjects(document, file, repair) &&
         ObjectStreams(file.Size()).Check(document) && PagesAreThere(document, repair);
}

bool LosesEncryption(QPDF& document) {
  return document.getTrailer().getDictAsMap().count("/Encrypt") != 0 && !document.isEncrypted();
}

std::vector<FileTail::KeptObject> SoundEntries(QPDF& document, const InputFile& file) {
  if (HasInventedKeys(document.getTrailer())) return {};
  const std::uint64_t headerOffset = QuickReader::HeaderOffset(file);
  FileWindow window(file);
  std::vector<FileTail::KeptObject> entries;
  for (const Place& place : PlacesOf(document, headerOffset)) {
    if (IsObjectAt(window, place)) entries.push_back({place.id, place.offset - headerOffset});
  }
  return entries;
}

}  // namespace engine
