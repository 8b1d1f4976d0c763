// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/BatchRun.h"

#include <algorithm>
#include <QJsonArray>
#include <QProcess>
#include <QSaveFile>

#include "host/base/ExitCode.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/core/RunArguments.h"

namespace {

// vorlane-run gives up a file after a quarter of an hour, so it cannot be silent for longer.
constexpr std::chrono::minutes kSilenceLimit(20);

QString TextOf(const QJsonObject& record, const char* key) {
  return record.value(QLatin1String(key)).toString();
}

FileState StateOf(const QJsonObject& record, const QString& reason) {
  const QString status = TextOf(record, "status");
  if (status == QLatin1String("failed")) {
    if (RecordTexts::IsAboutPassword(reason)) return FileState::kNeedsPassword;
    // It was in hand when the run was cancelled for the second time.
    return reason == QLatin1String("interrupted") ? FileState::kCancelled : FileState::kFailed;
  }
  const bool unchanged = status != QLatin1String("done") || TextOf(record, "saveMode") == QLatin1String("unchanged");
  return unchanged ? FileState::kUnchanged : FileState::kDone;
}

bool IsFinished(FileState state) {
  return state == FileState::kDone || state == FileState::kUnchanged;
}

// Without the mark of FileTableModel::NamesForFolder. Paths have no such part.
QString PathOf(QString name) {
  return name.replace(QStringLiteral("/./"), QStringLiteral("/"));
}

FileOutcome WithoutRecord(const FileStateChange& change) {
  FileOutcome outcome;
  outcome.change = change;
  return outcome;
}

// An error message, or an empty text.
QString Write(const QString& name, const QByteArray& bytes) {
  QSaveFile file(name);
  const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
  return written ? QString() : BatchRun::tr("The report cannot be written to %1: %2.").arg(name, file.errorString());
}

bool HasNotBegun(const RunnerResult& result) {
  return !result.started || (result.exitCode >= kExitUsage && result.exitCode < kExitSignalBase);
}

}  // namespace

BatchRun::BatchRun(QObject* parent) : QObject(parent) {
  connect(&runner_, &RunnerProcess::recordsReceived, this, &BatchRun::Take);
  connect(&runner_, &RunnerProcess::finished, this, &BatchRun::End);
  refuse_.setSingleShot(true);
  connect(&refuse_, &QTimer::timeout, this, [this] { End(refusal_); });
}

BatchRun::~BatchRun() {
  runner_.disconnect(this);
}

void BatchRun::Start(const QStringList& names, const ActionChoice& action, const OutputChoice& output) {
  report_.clear();
  outputFolders_.clear();
  settled_.clear();
  files_.clear();
  Begin(names, action, output);
}

void BatchRun::TryAgain(const QStringList& names, const ActionChoice& action, const OutputChoice& output) {
  Begin(names, action, output);
}

void BatchRun::Begin(const QStringList& names, const ActionChoice& action, const OutputChoice& output) {
  Q_ASSERT(!running_);
  running_ = true;
  QVector<FileOutcome> waiting;
  QStringList given;
  for (const QString& name : names) {
    const QString file = PathOf(name);
    if (open_.contains(file)) continue;
    open_.insert(file);
    if (settled_.remove(file) == 0) files_ += file;
    given += name;
    waiting.append(WithoutRecord({file, FileState::kWaiting, {}}));
  }
  const auto isOpen = [this](const ReportLine& line) { return open_.contains(line.file); };
  report_.erase(std::remove_if(report_.begin(), report_.end(), isOpen), report_.end());
  QString problem = ProblemOf(action, output);
  if (problem.isEmpty() && given.isEmpty()) problem = tr("Add files first.");
  if (!problem.isEmpty()) {
    refusal_ = RunnerResult();
    refusal_.started = false;
    refusal_.error = problem;
    refuse_.start();
  } else {
    RunnerRequest request;
    request.arguments = RunArguments(action, output);
    request.files = given;
    request.passwords = output.passwords;
    request.silenceLimit = kSilenceLimit;
    runner_.Start(request);
  }
  // While the program starts.
  emit filesChanged(waiting);
  emit progress(Done(), Total());
}

bool BatchRun::IsRunning() const {
  return running_;
}

void BatchRun::Cancel() {
  runner_.Cancel();
}

int BatchRun::Total() const {
  return files_.size();
}

int BatchRun::Done() const {
  return files_.size() - open_.size();
}

QStringList BatchRun::Unfinished() const {
  QStringList unfinished;
  for (const QString& file : files_) {
    if (!IsFinished(settled_.value(file, FileState::kDone))) unfinished += file;
  }
  return unfinished;
}

QStringList BatchRun::OutputFolders() const {
  return outputFolders_;
}

void BatchRun::Take(const QVector<RunnerRecord>& records) {
  QVector<FileOutcome> outcomes;
  for (const RunnerRecord& record : records) {
    const QString file = PathOf(TextOf(record.json, "file"));
    if (!open_.remove(file)) continue;
    report_.append({file, record.line});
    outcomes.append(OutcomeOf(file, record.json));
  }
  Settle(outcomes);
}

FileOutcome BatchRun::OutcomeOf(const QString& file, const QJsonObject& record) {
  FileOutcome outcome;
  const QString reason = TextOf(record, "reason");
  outcome.change = {file, StateOf(record, reason), RecordTexts::PlainReason(reason)};
  outcome.output = TextOf(record, "output");
  outcome.backup = TextOf(record, "backup");
  outcome.baseUrl = TextOf(record, "baseUrlAfter");
  for (const auto& warning : record.value(QLatin1String("warnings")).toArray()) {
    outcome.warnings += RecordTexts::PlainReason(warning.toString());
  }
  if (outcome.change.state == FileState::kDone) {
    const QString folder = outcome.output.left(outcome.output.lastIndexOf(QLatin1Char('/')));
    if (!outputFolders_.contains(folder)) outputFolders_ += folder;
  }
  return outcome;
}

void BatchRun::Settle(const QVector<FileOutcome>& outcomes) {
  for (const FileOutcome& outcome : outcomes) settled_.insert(outcome.change.path, outcome.change.state);
  if (outcomes.isEmpty()) return;
  emit filesChanged(outcomes);
  emit progress(Done(), Total());
}

BatchSummary BatchRun::Counts() const {
  BatchSummary counts;
  for (const FileState state : settled_) {
    switch (state) {
      case FileState::kDone:
        ++counts.done;
        break;
      case FileState::kUnchanged:
        ++counts.unchanged;
        break;
      case FileState::kCancelled:
        ++counts.cancelled;
        break;
      case FileState::kNeedsPassword:
        ++counts.needPassword;
        [[fallthrough]];
      default:
        ++counts.failed;
        break;
    }
  }
  return counts;
}

FileStateChange BatchRun::Leftover(const RunnerResult& result) const {
  if (HasNotBegun(result)) {
    return {{}, FileState::kCancelled, tr("The run could not begin. The file stays as it was.")};
  }
  // The program has finished the files that it held.
  if (result.exitCode > kExitSignalBase) {
    return {{}, FileState::kCancelled, tr("Cancelled. The file stays as it was.")};
  }
  QString reason = result.cancelled ? tr("Cancelled.") : result.error;
  if (reason.isEmpty()) reason = tr("vorlane-run says nothing about this file.");
  return {{},
          result.cancelled ? FileState::kCancelled : FileState::kFailed,
          reason + QLatin1Char(' ') + tr("Whether the file was changed is not known.")};
}

void BatchRun::End(const RunnerResult& result) {
  QVector<FileOutcome> outcomes;
  FileStateChange change = Leftover(result);
  for (const QString& file : qAsConst(files_)) {
    if (!open_.contains(file)) continue;
    change.path = file;
    outcomes.append(WithoutRecord(change));
  }
  open_.clear();
  Settle(outcomes);
  BatchSummary summary = Counts();
  summary.wasCancelled = result.cancelled;
  summary.error = RecordTexts::PlainReason(result.error);
  summary.messages = RecordTexts::Warnings(result.messages);
  running_ = false;
  emit finished(summary);
}

QByteArray BatchRun::ReportLines() const {
  QByteArray lines;
  for (const ReportLine& line : report_) lines += line.text + '\n';
  return lines;
}

void BatchRun::SaveReport(const QString& file) {
  const auto isNamed = [&](const char* ending) { return file.endsWith(QLatin1String(ending), Qt::CaseInsensitive); };
  if (isNamed(".csv")) return SaveTable(file);
  const QByteArray lines = ReportLines();
  const QByteArray array = "[\n" + lines.left(lines.size() - 1).replace("\n", ",\n") + "\n]\n";
  emit reportSaved(Write(file, isNamed(".jsonl") ? lines : array));
}

void BatchRun::SaveTable(const QString& file) {
  auto* const program = new QProcess(this);
  connect(program, &QProcess::errorOccurred, this, [this, program](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    emit reportSaved(program->errorString());
    program->deleteLater();
  });
  connect(program, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
          [this, program, file](int code, QProcess::ExitStatus status) {
            const bool isMade = status == QProcess::NormalExit && code <= kExitSomeFailed;
            const QByteArray messages = program->readAllStandardError();
            emit reportSaved(isMade ? Write(file, program->readAllStandardOutput()) : QString::fromUtf8(messages));
            program->deleteLater();
          });
  program->start(RunnerProcess::ProgramFile(),
                 {QStringLiteral("report"), QStringLiteral("--csv"), QStringLiteral("-")});
  program->write(ReportLines());
  program->closeWriteChannel();
}
