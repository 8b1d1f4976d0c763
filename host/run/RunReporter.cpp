// SPDX-License-Identifier: Apache-2.0
#include "host/run/RunReporter.h"

#include <algorithm>
#include <QByteArray>

#include "host/base/Console.h"

namespace {

void AppendCount(std::string& text, std::size_t count, const char* what) {
  if (count > 0) text += ", " + std::to_string(count) + what;
}

}  // namespace

RunReporter::RunReporter(ReportFile& report, std::size_t files, bool quiet, bool dryRun)
    : report_(report),
      quiet_(quiet),
      dryRun_(dryRun),
      total_(files),
      start_(std::chrono::steady_clock::now()),
      progress_(!quiet, dryRun ? "dry run " : "") {}

void RunReporter::TakeSettled(const FileRecord& record) {
  if (record.status == FileRecord::Status::kSkipped && !quiet_) {
    progress_.Hide();
    Console::ErrorAbout(record.file, "skipped: " + record.reason);
  }
  Take(record);
}

void RunReporter::Take(const FileRecord& record) {
  if (report_.IsWanted()) report_.Add(record.ToJson());
  Count(record);
  if (record.warnings.empty()) return;
  ++warned_;
  if (quiet_) return;
  progress_.Hide();
  for (const std::string& warning : record.warnings) Console::ErrorAbout(record.file, "warning: " + warning);
}

void RunReporter::Count(const FileRecord& record) {
  switch (record.status) {
    case FileRecord::Status::kDone:
      ++done_;
      if (record.Unchanged()) ++unchanged_;
      break;
    case FileRecord::Status::kUnchanged:
      ++unchanged_;
      ++done_;
      break;
    case FileRecord::Status::kWouldChange:
      ++done_;
      break;
    case FileRecord::Status::kFailed:
      ++failed_;
      progress_.Hide();
      Console::ErrorAbout(record.file, record.reason);
      break;
    case FileRecord::Status::kSkipped:
      ++skipped_;
      break;
  }
}

void RunReporter::Flush() {
  progress_.Show(done_ + failed_ + skipped_, total_ - std::min(total_, doneBefore_));
  report_.Flush();
}

bool RunReporter::Finish(bool interrupted) {
  progress_.Hide();
  const bool reported = report_.Finish();
  if (!quiet_) Summarize(interrupted);
  return reported;
}

void RunReporter::Summarize(bool interrupted) {
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  std::string text;
  if (dryRun_) {
    text = "dry run, nothing was saved: " + std::to_string(done_ - unchanged_) + " would change";
    AppendCount(text, unchanged_, " would stay as they are");
  } else {
    text = std::to_string(done_) + " done";
    AppendCount(text, unchanged_, " of them unchanged");
  }
  AppendCount(text, failed_, " failed");
  AppendCount(text, skipped_, " skipped");
  AppendCount(text, doneBefore_, " done before");
  AppendCount(text, warned_, " with warnings");
  const std::size_t seen = done_ + failed_ + skipped_ + doneBefore_;
  if (interrupted) AppendCount(text, total_ - std::min(total_, seen), " left: interrupted");
  text += " (" + QByteArray::number(elapsed.count(), 'f', 2).toStdString() + " s)";
  Console::ErrorAbout("vorlane-run", text);
}
