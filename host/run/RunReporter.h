// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <QIODevice>
#include <string>

#include "host/run/Outcome.h"
#include "host/run/ProgressBar.h"

// Collects what became of the files: the report, one line on the standard error for each failure and warning, the
// progress bar and the closing line. Keeps counts only.
class RunReporter {
 public:
  // Names of reports: "-" streams one JSON line for each file as it finishes to the standard output; a name that ends
  // in
  // ".jsonl", or that is no regular file, does so to that file; any other name gets a JSON array, written at the end
  // and at once. Empty: no report. `append` goes on with a report of lines, without its last line if that was cut off.
  // Throws CommandError(kExitUsage) when the report cannot be written.
  RunReporter(const std::string& report, bool append, bool quiet);
  ~RunReporter();

  static bool IsStreamed(const std::string& report);

  // Whether there is a report; without one, outcomes need no JSON.
  bool WantsRecords() const { return form_ != Form::kNone; }
  void SetTotal(std::size_t files) { total_ = files; }
  // A record that the resumed run made.
  void Carry(std::string_view json);
  void CountDoneBefore() { ++doneBefore_; }
  void Take(const Outcome& outcome);
  void Take(const FileRecord& record);
  // Lets what was taken be seen: streamed lines and the progress bar.
  void Flush();
  // Completes report and counts. False when the report could not be written.
  bool Finish(bool interrupted);

  std::size_t Failed() const { return failed_; }

 private:
  void Write(std::string_view json);
  void DropStale();
  void Summarize(bool interrupted);

  enum class Form { kNone, kLines, kArray };
  Form form_ = Form::kNone;
  std::string name_;
  std::unique_ptr<QIODevice> device_;
  std::string pending_;
  bool first_ = true;
  bool stale_ = false;  // the report still has an earlier run's lines
  bool broken_ = false;
  bool quiet_;
  std::size_t total_ = 0;
  std::size_t done_ = 0;
  std::size_t unchanged_ = 0;
  std::size_t failed_ = 0;
  std::size_t skipped_ = 0;
  std::size_t doneBefore_ = 0;
  std::size_t warned_ = 0;
  std::chrono::steady_clock::time_point start_;
  ProgressBar progress_;
};
