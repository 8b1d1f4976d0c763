// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/run/FileRecord.h"
#include "plugin/CActionInterface.h"

class HalvexPDFLibraryCPDylibCPP1311;

// One action of a run with its settings.
struct RunStep {
  CActionInterface* action;
  QString name;
  QMap<QString, QVariant> settings;
};

struct ProcessingOptions {
  std::wstring password;
  bool allowBreakingSignatures = false;
};

// Loads a document, runs the actions on it, saves it. All documents go through one library object, one after another.
class DocumentProcessor {
 public:
  // Keeps references: library, steps and options outlive the processor.
  DocumentProcessor(HalvexPDFLibraryCPDylibCPP1311& library, const std::vector<RunStep>& steps,
                    const ProcessingOptions& options)
      : library_(library), steps_(steps), options_(options) {}

  // Whatever goes wrong is in the record; nothing is thrown. A failed document leaves its output untouched.
  FileRecord Process(const std::string& file, const std::string& output);

 private:
  struct Failure;

  void Load(FileRecord& record);
  void RunActions();
  void CheckSaving(FileRecord& record);
  void Save(FileRecord& record);
  void NoteLastWay(FileRecord& record);

  HalvexPDFLibraryCPDylibCPP1311& library_;
  const std::vector<RunStep>& steps_;
  const ProcessingOptions& options_;
  int document_ = 0;
};
