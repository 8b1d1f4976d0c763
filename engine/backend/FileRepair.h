// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <qpdf/QPDF.hh>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/backend/BackendInputSource.h"
#include "engine/base/EngineError.h"
#include "engine/quick/FileTail.h"
#include "engine/repair/FileScan.h"

namespace engine {

class FileWindow;
class ObjectStreams;

// Damage that cannot be repaired without loss (kErrorDamaged).
class CannotRepair : public EngineError {
 public:
  explicit CannotRepair(const std::string& message) : EngineError(kErrorDamaged, message) {}
};

// The same, as readers see different documents in the file, whatever is appended.
class OtherDocument : public CannotRepair {
 public:
  using CannotRepair::CannotRepair;
};

// Makes a damaged file readable by adding one complete cross-reference section for every object in it. The parser then
// sees the file's bytes and that section, which is what a save appends.
class FileRepair {
 public:
  struct Result {
    std::shared_ptr<QPDF> document;
    BackendInputSource::View view;
    FileTail tail;
  };

  explicit FileRepair(std::shared_ptr<const InputFile> file) : file_(std::move(file)) {}

  // The objects in the file; read on first use.
  const FileScan& Scan();
  // Whether the file has the object, outside of object streams.
  bool Finds(ObjectId id);

  // Whether nothing is cut off where an update begins. Readers that rebuild the file even after a save, as some do when
  // bytes are before the header, would take the update for a part of a value or stream that does not end.
  bool EndIsClosed();

  // Whether there is a header between objects.
  bool HoldsTwoDocuments();

  // Whether every stream ends where its /Length says. Readers do without it when they rebuild the file, and trust it
  // when the cross-references are sound.
  bool LengthsAreRight();

  // Objects that replace others of the same number.
  void Prefer(std::vector<FileTail::KeptObject> objects) { preferred_ = std::move(objects); }

  // The repaired file. `document` is null when the password does not fit. Throws EngineError kErrorDamaged when no
  // catalog is found or its object streams inflate to too much, CannotRepair, and what the parser throws.
  Result Open(const std::string& password);

 private:
  using Kept = std::vector<FileTail::KeptObject>;
  struct Placed {
    FileTail::KeptObject object;
    std::uint64_t place;  // in the file, of the object or of the object stream it is in
  };
  // What the file is up to one of its ends, if its own cross-references lead to all of that.
  struct Version {
    std::uint64_t end;
    FileTail tail;
    std::shared_ptr<QPDF> document;
  };

  static QPDFObjectHandle ObjectOf(QPDF& document, ObjectId id);
  // Cross-references are not rebuilt, as every object is where its entry says. Streams with a wrong length are read as
  // far as they go.
  static std::shared_ptr<QPDF> OpenRecovering(BackendInputSource::View& view, const std::string& password);
  // The bytes of the first part of /ID, which stays the same in all versions of a file (ISO 32000-1, 14.4).
  static std::string FirstIdentifier(const std::string& identifier);
  const std::vector<FileScan::Object>& Newest();
  // What ends a value or stream that the end of the file cuts off; empty when there is none.
  std::string Closing();
  std::string TrailerEntry(const std::string& key);
  void CheckOneEncryption();
  std::string MixedDocuments();
  std::optional<Version> FindEarlierVersion(const std::string& password);
  bool UpdateIsCutOff();
  bool IsUpdated(const Version& version);
  bool EarlierVersionCounts(const Version& version, QPDF& rebuilt, const Kept& kept, bool rebuiltHasPages);
  bool NamesPages(const FileScan::Object& catalog) const;
  bool CatalogAfter(const Version& version, QPDF& rebuilt);
  bool AnotherRootAfter(const Version& version, QPDF& rebuilt);
  BackendInputSource::View ViewOf(const Kept& kept, const FileTail& tail, const std::string& more) const;
  std::shared_ptr<QPDF> OpenWithTemporaryCatalog(Kept kept, const std::string& password);
  void PutPreferred(Kept& kept) const;
  std::optional<std::set<std::uint64_t>> OffsetsInXrefStreams() const;
  bool Updates(const FileScan::Object& object, const FileScan::Object& stream);
  bool NamesObjectStreams();
  static std::vector<std::uint32_t> SoundMembers(ObjectStreams& streams, QPDF& document,
                                                 const FileScan::Object& stream);
  bool MemberReplaces(const Placed& known, const FileScan::Object& stream, bool named);
  Kept AddMembers(QPDF& document, const Kept& plain);
  Kept WithoutUnreadableMembers(QPDF& document, const Kept& kept, const Kept& plain);
  void CheckMembers(QPDF& document, const Kept& kept) const;
  std::optional<ObjectId> FindRoot(QPDF& document, const Kept& kept);
  bool IsOnlyRoot(ObjectId root);
  const FileScan::Object* Find(ObjectId id);
  bool HasXrefStreamAsPage(QPDFObjectHandle catalog);
  FileTail MakeTail(ObjectId root, Kept kept);
  const FileScan::Object* ScannedAt(std::uint64_t offset);
  bool EncryptionIsStray();
  bool IsKeyword(const FileScan::Object& object) const;
  bool AreCopies(const FileScan::Object& one, const FileScan::Object& other) const;
  void CheckDamagedObjects(const FileTail& tail);
  void CheckObjects(QPDF& document, const FileTail& tail);
  void CompareWithParser(BackendInputSource::View view, const std::string& password) const;
  void RepairStreams(QPDF& document, FileTail& tail);
  std::optional<std::string> WithLength(QPDF& document, const FileScan::Object& stream, FileWindow& window) const;

  std::shared_ptr<const InputFile> file_;
  Kept preferred_;
  std::optional<FileScan> scan_;
  std::optional<std::vector<FileScan::Object>> newest_;
};

}  // namespace engine
