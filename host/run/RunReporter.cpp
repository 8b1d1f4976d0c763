// SPDX-License-Identifier: Apache-2.0
#include "host/run/RunReporter.h"

#include <unistd.h>

#include <algorithm>
#include <QByteArray>

#include "host/base/Console.h"
#include "host/base/PdfLibrary.h"

namespace {

void AppendCount(std::string& text, std::size_t count, const char* what) {
  if (count > 0) text += ", " + std::to_string(count) + what;
}

std::string ShownUrl(const std::wstring& url) {
  return url.empty() ? "no base URL" : Console::OneLine(PdfLibrary::ToUtf8(url)).toStdString();
}

// What a dry run says of one file, without its warnings.
std::string Planned(const FileRecord& record) {
  std::string text = Console::OneLine(record.file).toStdString() + ": ";
  if (record.status == FileRecord::Status::kSkipped) {
    return text + "skipped: " + Console::OneLine(record.reason).toStdString() + '\n';
  }
  const bool sameUrl = record.baseUrlBefore == record.baseUrlAfter;
  text += ShownUrl(record.baseUrlBefore) + (sameUrl ? "" : " -> " + ShownUrl(record.baseUrlAfter)) + " (";
  text += record.saveMode == "unknown" ? "would be saved" : record.saveMode;
  if (record.output != record.file) {
    const bool isThere = FileState::Of(record.output).size >= 0;
    text += (isThere ? ", replaces " : ", to ") + Console::OneLine(record.output).toStdString();
  }
  if (!record.backup.empty()) text += ", backup " + Console::OneLine(record.backup).toStdString();
  return text + ")\n";
}

}  // namespace

RunReporter::RunReporter(ReportFile& report, std::size_t files, bool quiet, bool dryRun)
    : report_(report),
      quiet_(quiet),
      dryRun_(dryRun),
      lists_(dryRun && !quiet && !report.IsOnStandardOutput()),
      total_(files),
      start_(std::chrono::steady_clock::now()),
      // Where the list can be seen as it comes, a bar would only flicker between its lines.
      progress_(!quiet && !(lists_ && isatty(STDOUT_FILENO) == 1), dryRun ? "dry run " : "") {}

void RunReporter::TakeSettled(const FileRecord& record) {
  if (record.status == FileRecord::Status::kSkipped && !quiet_ && !lists_) {
    progress_.Hide();
    Console::ErrorAbout(record.file, "skipped: " + record.reason);
  }
  Take(record);
}

void RunReporter::Take(const FileRecord& record) {
  if (report_.IsWanted()) report_.Add(record.ToJson());
  Count(record);
  if (lists_ && record.status != FileRecord::Status::kFailed) list_ += Planned(record);
  if (!record.warnings.empty()) Warn(record);
}

void RunReporter::Warn(const FileRecord& record) {
  ++warned_;
  if (quiet_) return;
  if (!lists_) progress_.Hide();
  for (const std::string& warning : record.warnings) {
    if (lists_) {
      list_ += "  warning: " + Console::OneLine(warning).toStdString() + '\n';
    } else {
      Console::ErrorAbout(record.file, "warning: " + warning);
    }
  }
}

void RunReporter::WriteList() {
  if (list_.empty()) return;
  listWritten_ = Console::WriteAll(STDOUT_FILENO, list_) && listWritten_;
  list_.clear();
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
      WriteList();
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
  WriteList();
}

bool RunReporter::Finish(bool interrupted) {
  progress_.Hide();
  WriteList();
  const bool reported = report_.Finish();
  if (!quiet_) Summarize(interrupted);
  return reported && listWritten_;
}

void RunReporter::Summarize(bool interrupted) {
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  std::string text;
  if (dryRun_) {
    text = "dry run, nothing was saved: " + std::to_string(done_ - unchanged_) + " would change";
    AppendCount(text, unchanged_, " would stay unchanged");
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
