// SPDX-License-Identifier: Apache-2.0
#include "host/run/RunReporter.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <QFile>
#include <QSaveFile>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NativeName.h"

namespace {

constexpr std::size_t kPendingLimit = 1 << 16;

// Drops what follows the last line break.
bool TrimTornLine(QFile& file) {
  qint64 end = file.size();
  for (char last = 0; end > 0; --end) {
    if (!file.seek(end - 1) || !file.getChar(&last)) return false;
    if (last == '\n') break;
  }
  return file.resize(end) && file.seek(end);
}

std::optional<mode_t> ModeOf(const std::string& name) {
  struct stat status;
  if (stat(name.c_str(), &status) != 0) return std::nullopt;
  return status.st_mode;
}

void AppendCount(std::string& text, std::size_t count, const char* what) {
  if (count > 0) text += ", " + std::to_string(count) + what;
}

}  // namespace

bool RunReporter::IsStreamed(const std::string& report) {
  static const std::string kSuffix = ".jsonl";
  if (report == "-") return true;
  if (report.size() >= kSuffix.size() && report.compare(report.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0) {
    return true;
  }
  const std::optional<mode_t> mode = ModeOf(report);
  return mode && !S_ISREG(*mode);
}

RunReporter::RunReporter(const std::string& report, bool append, bool quiet)
    : name_(report), quiet_(quiet), start_(std::chrono::steady_clock::now()), progress_(!quiet) {
  if (report.empty()) return;
  bool opened = false;
  if (!IsStreamed(report)) {
    form_ = Form::kArray;
    auto file = std::make_unique<QSaveFile>(NativeName::ToText(report));
    opened = file->open(QIODevice::WriteOnly);
    device_ = std::move(file);
    pending_ = "[\n";
  } else {
    form_ = Form::kLines;
    auto file = std::make_unique<QFile>(report == "-" ? QString() : NativeName::ToText(report));
    if (report == "-") {
      opened = file->open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    } else if (append) {
      opened = file->open(QIODevice::ReadWrite | QIODevice::Unbuffered) && TrimTornLine(*file);
    } else if (S_ISREG(ModeOf(report).value_or(0))) {
      // A run that cannot even begin leaves the earlier run's report.
      stale_ = true;
      opened = file->open(QIODevice::Append | QIODevice::Unbuffered);
    } else {
      opened = file->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    device_ = std::move(file);
  }
  if (!opened) {
    throw CommandError(
        kExitUsage,
        QStringLiteral("Cannot write the report '%1': %2").arg(NativeName::ToText(report), device_->errorString()));
  }
}

RunReporter::~RunReporter() = default;

void RunReporter::Carry(std::string_view json) {
  Write(json);
}

void RunReporter::Write(std::string_view json) {
  if (form_ == Form::kNone) return;
  if (form_ == Form::kArray && !first_) pending_ += ",\n";
  first_ = false;
  pending_ += json;
  if (form_ == Form::kLines) pending_ += '\n';
  if (pending_.size() > kPendingLimit) Flush();
}

void RunReporter::Take(const FileRecord& record) {
  const std::string json = WantsRecords() ? record.ToJson() : std::string();
  std::string warnings;
  for (const std::string& warning : record.warnings) warnings += warning + '\n';
  Take(Outcome{record.file, record.status, record.Unchanged(), record.reason, warnings, json});
}

void RunReporter::Take(const Outcome& outcome) {
  Write(outcome.json);
  switch (outcome.status) {
    case FileRecord::Status::kDone:
      ++done_;
      if (outcome.unchanged) ++unchanged_;
      break;
    case FileRecord::Status::kFailed:
      ++failed_;
      progress_.Hide();
      Console::ErrorAbout(outcome.file, outcome.reason);
      break;
    case FileRecord::Status::kSkipped:
      ++skipped_;
      progress_.Hide();
      if (!quiet_) Console::ErrorAbout(outcome.file, "skipped: " + std::string(outcome.reason));
      break;
  }
  if (outcome.warnings.empty()) return;
  ++warned_;
  if (quiet_) return;
  progress_.Hide();
  for (std::string_view rest = outcome.warnings; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    Console::ErrorAbout(outcome.file, "warning: " + std::string(line));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
}

void RunReporter::Flush() {
  progress_.Show(done_ + failed_ + skipped_, total_ - std::min(total_, doneBefore_));
  if (pending_.empty() || (form_ == Form::kArray && pending_.size() <= kPendingLimit)) return;
  DropStale();
  const auto size = static_cast<qint64>(pending_.size());
  if (device_->write(pending_.data(), size) != size) broken_ = true;
  pending_.clear();
}

void RunReporter::DropStale() {
  if (stale_ && !static_cast<QFile&>(*device_).resize(0)) broken_ = true;
  stale_ = false;
}

bool RunReporter::Finish(bool interrupted) {
  progress_.Hide();
  if (form_ == Form::kArray) {
    pending_ += first_ ? "]\n" : "\n]\n";
    const auto size = static_cast<qint64>(pending_.size());
    broken_ = device_->write(pending_.data(), size) != size || broken_;
    auto& file = static_cast<QSaveFile&>(*device_);
    // commit() does not look at what writing out the last buffer came to.
    broken_ = broken_ || !file.flush() || !file.commit();
  } else if (form_ == Form::kLines) {
    DropStale();
    Flush();
  }
  if (broken_) {
    Console::Error(
        QStringLiteral("Cannot write the report '%1': %2").arg(NativeName::ToText(name_), device_->errorString()));
  }
  if (!quiet_) Summarize(interrupted);
  return !broken_;
}

void RunReporter::Summarize(bool interrupted) {
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  std::string text = std::to_string(done_) + " done";
  AppendCount(text, unchanged_, " of them unchanged");
  AppendCount(text, failed_, " failed");
  AppendCount(text, skipped_, " skipped");
  AppendCount(text, doneBefore_, " done before");
  AppendCount(text, warned_, " with warnings");
  const std::size_t seen = done_ + failed_ + skipped_ + doneBefore_;
  if (interrupted) AppendCount(text, total_ - std::min(total_, seen), " left: interrupted");
  text += " (" + QByteArray::number(elapsed.count(), 'f', 2).toStdString() + " s)";
  Console::ErrorAbout("vorlane-run", text);
}
