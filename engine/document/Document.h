// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/document/BackendDocument.h"
#include "engine/document/Changes.h"
#include "engine/document/SavePlan.h"
#include "engine/quick/QuickDocument.h"

namespace engine {

class InputFile;
class OutputFile;

// One open document: where it came from, what the quick reader or the full parser says of it, and what was set since.
// All members throw EngineError.
class Document {
 public:
  // One empty page; no file.
  static std::unique_ptr<Document> New();
  // `password` opens an encrypted document as user or owner and is ignored for others. Throws EngineError with the
  // codes of InputFile::Open and Backend::Open.
  static std::unique_ptr<Document> FromFile(const std::string& path, const std::string& password);
  static std::unique_ptr<Document> FromBytes(std::string bytes, const std::string& password);

  // As it was given to FromFile(); empty for documents from elsewhere.
  const std::string& FileName() const { return fileName_; }
  // In bytes; 0 for a new document.
  std::uint64_t FileSize();

  // The base URL as it stands in the file or shall stand there.
  std::string BaseUrl();
  void SetBaseUrl(const std::string& url);
  // An entry of the document information dictionary (ISO 32000-1, 14.3.3), UTF-8. An empty value removes it.
  std::string Information(const std::string& key);
  void SetInformation(const std::string& key, const std::string& value);

  int SelectedPage() const { return selectedPage_; }
  // Throws EngineError kErrorBadArgument for a page that is not there.
  void SelectPage(int page);
  BackendDocument::PageGeometry PageGeometry();

  // Whether the document was damaged and is known in its repaired form.
  bool Repaired();
  BackendDocument::Signatures Signatures();
  // 0: not encrypted; 1: encrypted, opened as user; 2: opened as owner.
  int EncryptionStatus();
  // The full parser's view, opened on first use.
  BackendDocument& Full();

  // How a save would be written now.
  SavePlan Plan();
  // How the latest successful save was written; no value before the first. Differs from the plan when an update that
  // was to be appended did not read back.
  std::optional<SavePlan::Way> LastSaved() const { return lastSaved_; }
  // The target becomes the new file whole or stays as it was. Saved onto the file that was loaded, the document is that
  // new file from then on.
  void SaveToFile(const std::string& path);
  std::string SaveToBytes();

 private:
  using MakeOutput = std::function<std::unique_ptr<OutputFile>()>;
  struct Written {
    std::unique_ptr<OutputFile> output;
    SavePlan::Way way;
  };

  Document() = default;
  static std::unique_ptr<Document> FromSource(std::shared_ptr<const InputFile> source, const std::string& password);
  void Open(std::shared_ptr<const InputFile> source);
  void FollowReplacedSource();
  bool LeadsToSource(const std::string& path) const;
  const std::string& StoredBaseUrl();
  const std::optional<FileTail>& Tail();
  bool QuickSuffices() const { return quick_ && changes_.information.empty(); }
  Written Write(const MakeOutput& make);
  Changes ChangesForFull();
  void Rewrite(OutputFile& output);
  bool Append(OutputFile& output);

  std::string fileName_;
  std::string password_;
  std::shared_ptr<const InputFile> source_;  // null for a new document
  std::optional<QuickDocument> quick_;
  std::unique_ptr<BackendDocument> full_;
  std::optional<std::string> fullBaseUrl_;
  std::optional<std::optional<FileTail>> tail_;
  std::optional<BackendDocument::Signatures> signatures_;
  Changes changes_;
  std::optional<SavePlan::Way> lastSaved_;
  bool appendFailed_ = false;
  bool sourceReplaced_ = false;  // by a save of this document
  int selectedPage_ = 1;
};

}  // namespace engine
