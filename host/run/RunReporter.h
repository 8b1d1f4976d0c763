// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "host/run/FileRecord.h"
#include "host/run/ProgressBar.h"
#include "host/run/ReportFile.h"

// Collects what became of the files: the report, one line on the standard error for each failure and warning, the
// progress bar and the closing line. A dry run lists on the standard output what would become of each file, with the
// warnings, unless the report is there. Keeps counts only.
class RunReporter {
 public:
  // Keeps a reference to the report. `files` is how many there are in all.
  RunReporter(ReportFile& report, std::size_t files, bool quiet, bool dryRun);

  void CountDoneBefore(std::size_t files) { doneBefore_ += files; }
  void Take(const FileRecord& record);
  // The same for an input that is not processed; a line says why.
  void TakeSettled(const FileRecord& record);
  // Shows what was taken so far: streamed lines and the progress bar.
  void Flush();
  // Completes report and counts. False when the report could not be written.
  bool Finish(bool interrupted);

  std::size_t Failed() const { return failed_; }

 private:
  void Count(const FileRecord& record);
  void Warn(const FileRecord& record);
  void WriteList();
  void Summarize(bool interrupted);

  ReportFile& report_;
  bool quiet_;
  bool dryRun_;
  bool lists_;  // what would be
  std::string list_;
  bool listWritten_ = true;
  std::size_t total_;
  std::size_t done_ = 0;  // in a dry run: would change, or would stay unchanged
  std::size_t unchanged_ = 0;
  std::size_t failed_ = 0;
  std::size_t skipped_ = 0;
  std::size_t doneBefore_ = 0;
  std::size_t warned_ = 0;
  std::chrono::steady_clock::time_point start_;
  ProgressBar progress_;
};
