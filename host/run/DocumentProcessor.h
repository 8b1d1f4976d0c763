// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/actions/ConfiguredAction.h"
#include "host/base/PdfLibrary.h"
#include "host/run/FileRecord.h"
#include "host/run/RunPlan.h"

// Which documents are touched, by their base URL.
struct BaseUrlCondition {
  enum class Kind {
    kAny,
    kNone,     // those without one, or with an empty one
    kDiffers,  // those that the actions change; by the base URL if the library does not say how it would save
    kIs        // those with this value
  };
  Kind kind = Kind::kAny;
  std::wstring value;
};

struct ProcessingOptions {
  std::vector<std::wstring> passwords;
  bool allowBreakingSignatures = false;
  bool dryRun = false;       // everything but the save
  std::string backupSuffix;  // bytes; empty for no backups. Outputs are the inputs then
  BaseUrlCondition onlyIf;
  bool forReport = false;  // the records hold what only a report needs
};

// Loads a document, runs the actions on it, saves it. All documents go through one library object, one after another.
// When another program changes the file meanwhile, everything is done again with the new file, a few times at most.
class DocumentProcessor {
 public:
  // Keeps references: library, actions and options outlive the processor.
  DocumentProcessor(PdfLibrary::Wrapper& library, const std::vector<ConfiguredAction>& actions,
                    const ProcessingOptions& options)
      : library_(library), actions_(actions), options_(options) {}

  // Whatever goes wrong is in the record; nothing is thrown. A failed document leaves its output untouched.
  FileRecord Process(const PlannedFile& file);

 private:
  struct Failure;
  struct Unwanted;

  void ProcessOnce(FileRecord& record, const PlannedFile& file);
  void Load(FileRecord& record);
  QMap<QString, QVariant> SettingsFor(const ConfiguredAction& action, const PlannedFile& file) const;
  void RunActions(FileRecord& record, const PlannedFile& file);
  void CheckCondition(const FileRecord& record, bool actionsRan) const;
  void Advise(FileRecord& record);
  void CheckSaving(FileRecord& record);
  void CheckSignatures(FileRecord& record);
  void Save(FileRecord& record);
  void SaveOutput(FileRecord& record);
  void NoteLastSaveMode(FileRecord& record);

  PdfLibrary::Wrapper& library_;
  const std::vector<ConfiguredAction>& actions_;
  const ProcessingOptions& options_;
  int document_ = 0;
};
