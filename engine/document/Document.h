// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "engine/document/DocumentLinks.h"
#include "engine/document/LoadedFile.h"
#include "engine/save/Edits.h"

namespace engine {

// One open document: the file that was loaded and the edits since. Questions change neither. All members throw
// EngineError.
class Document {
 public:
  // One empty page; no file.
  static std::unique_ptr<Document> New();
  // See LoadedFile::Open; the codes of InputFile::Open as well.
  static std::unique_ptr<Document> FromFile(const std::string& path, const std::string& password);
  static std::unique_ptr<Document> FromBytes(std::string bytes, const std::string& password);

  // As it was given to FromFile(); empty for documents from elsewhere.
  const std::string& FileName() const { return fileName_; }
  // In bytes; 0 for a new document.
  std::uint64_t FileSize() { return File().Size(); }

  // See DocumentProperties.h.
  std::string BaseUrl();
  bool HasBaseUrl();
  void SetBaseUrl(const std::string& url);
  std::string PdfVersion();
  std::string Information(const std::string& key);
  void SetInformation(const std::string& key, const std::string& value);
  // What an action has to say of the document; any text, never stored in the file.
  const std::string& Warnings() const { return warnings_; }
  void SetWarnings(const std::string& warnings) { warnings_ = warnings; }

  int PageCount() { return static_cast<int>(File().Pages().size()); }
  int SelectedPage() const { return selectedPage_; }
  // Throws EngineError kErrorBadArgument for a page that is not there.
  void SelectPage(int page);
  BackendDocument::PageGeometry PageGeometry();
  // The links of the document with its edits; valid until the next save.
  DocumentLinks& Links();
  // Part 1 stays when a document is changed, part 2 does not (ISO 32000-1, 14.4); the bytes, empty for none.
  std::string Identifier(int part);

  // See LoadedFile and BackendDocument.
  bool Repaired() { return File().Repaired(); }
  BackendDocument::Signatures Signatures() { return File().Signatures(); }
  bool Linearized() { return File().Full().Linearized(); }
  BackendDocument::Encryption Encryption() { return File().Encryption(); }
  int EncryptionStatus() { return File().EncryptionStatus(); }
  BackendDocument::PasswordMatch CheckPassword(const std::string& password) { return File().Full().Check(password); }

  // How a save would be written now.
  SavePlan Plan() { return File().PlanFor(AllEdits()); }
  // How the latest successful save was written; no value before the first. Differs from the plan when an appended
  // update did not read back.
  std::optional<SaveMode> LastSaved() const { return lastSaved_; }
  // The target becomes the new file whole or stays as it was. Saved onto the file that was loaded, the document is that
  // new file from then on.
  void SaveToFile(const std::string& path);
  std::string SaveToBytes();

 private:
  Document() = default;
  // The loaded file; after a save onto it, the new one.
  LoadedFile& File();
  // The edits with those that were made through Links().
  Edits& AllEdits();

  std::string fileName_;
  std::string warnings_;
  std::string absolutePath_;
  std::string password_;
  std::optional<LoadedFile> file_;
  Edits edits_;
  std::optional<std::string> baseUrl_;  // once it was asked for or set
  std::unique_ptr<DocumentLinks> links_;
  std::optional<SaveMode> lastSaved_;
  int selectedPage_ = 1;
};

}  // namespace engine
