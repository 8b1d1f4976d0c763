// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/run/DocumentProcessor.h"
#include "host/run/RunPlan.h"
#include "host/run/RunReporter.h"
#include "host/run/WorkerTask.h"

// What every process that works on the documents of a run needs.
struct RunSettings {
  std::wstring libraryFile;
  std::vector<ConfiguredAction> actions;
  ProcessingOptions processing;
  std::size_t memoryLimit = 0;  // bytes that documents may take in each process; 0: no limit
};

// Processes the planned files and reports on each: in worker processes, or in this one.
class DocumentRun : public WorkerTask {
 public:
  // Keeps references.
  DocumentRun(const RunSettings& settings, const RunPlan& plan, RunReporter& reporter)
      : settings_(settings), plan_(plan), reporter_(reporter) {}

  // One file after another, until the end or a stop signal. Throws CommandError(kExitNotLoaded).
  void RunHere();

  void Begin() override;
  std::string Work(std::size_t item) override { return ProcessItem(item).Pack(); }
  void Take(std::size_t, std::string_view result) override { reporter_.Take(FileRecord::Unpack(result)); }
  void Lose(std::size_t item, const std::string& reason) override;
  void Flush() override { reporter_.Flush(); }

 private:
  // Reading the links of every file would take longer than the rest of a run over many small ones.
  static constexpr std::size_t kAdvisedFiles = 10;

  FileRecord ProcessItem(std::size_t item);

  const RunSettings& settings_;
  const RunPlan& plan_;
  RunReporter& reporter_;
  std::unique_ptr<PdfLibrary::Wrapper> library_;
  std::unique_ptr<DocumentProcessor> processor_;
};
