// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FactsReader.h"

#include <algorithm>

#include "host/base/ExitCode.h"
#include "host/window/core/RecordTexts.h"

namespace {

// So many that starting the program does not count, and so few that what is asked later need not wait for long.
constexpr int kMostFiles = 10000;
// When a program has answered for no file, the next one gets so many times fewer.
constexpr int kFewer = 8;
constexpr int kMostBlamed = 3;

bool IsAboutReading(FileState state) {
  switch (state) {
    case FileState::kNew:
    case FileState::kReading:
    case FileState::kReady:
    case FileState::kUnreadable:
    case FileState::kNeedsPassword:
      return true;
    default:
      return false;
  }
}

QString Encryption(const QJsonObject& encrypted) {
  QString text = encrypted.value(QLatin1String("algorithm")).toString();
  const int bits = encrypted.value(QLatin1String("bits")).toInt();
  if (bits > 0) text += QStringLiteral(", ") + FactsReader::tr("%1 bits").arg(bits);
  return text;
}

FileFacts FactsOf(const QJsonObject& json) {
  const auto number = [](const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toInt(-1);
  };
  FileFacts facts;
  const QJsonValue baseUrl = json.value(QLatin1String("baseUrl"));
  if (baseUrl.isString()) facts.baseUrl = baseUrl.toString();
  facts.pages = number(json, "pages");
  const QJsonObject links = json.value(QLatin1String("links")).toObject();
  facts.links = number(links, "total");
  facts.relativeLinks = number(links, "relative");
  facts.signatures = number(json, "signatures");
  facts.certification = json.value(QLatin1String("certification")).toInt(0);
  const QJsonValue encrypted = json.value(QLatin1String("encrypted"));
  facts.encrypted = encrypted.isObject();
  facts.encryption = Encryption(encrypted.toObject());
  facts.saveMode = json.value(QLatin1String("saveMode")).toString();
  return facts;
}

}  // namespace

FactsReader::FactsReader(FileTableModel& model, QObject* parent) : QObject(parent), model_(model), most_(kMostFiles) {
  begin_.setSingleShot(true);
  connect(&begin_, &QTimer::timeout, this, &FactsReader::Begin);
  connect(&runner_, &RunnerProcess::recordsReceived, this, &FactsReader::Take);
  connect(&runner_, &RunnerProcess::finished, this, &FactsReader::End);
  connect(&model_, &QAbstractItemModel::rowsInserted, this,
          [this](const QModelIndex&, int first, int last) { EnqueueNewRows(first, last); });
  connect(&model_, &QAbstractItemModel::modelReset, this, [this] {
    if (model_.Count() == 0) runner_.Kill();
    EnqueueNewRows(0, model_.Count() - 1);
  });
  EnqueueNewRows(0, model_.Count() - 1);
}

FactsReader::~FactsReader() {
  runner_.disconnect(this);
  runner_.Kill();
}

void FactsReader::Refresh(const QStringList& paths) {
  Enqueue(paths);
}

void FactsReader::SetPasswords(const QStringList& passwords) {
  if (passwords == passwords_) return;
  passwords_ = passwords;
  Enqueue(model_.PathsWith(FileState::kNeedsPassword));
}

void FactsReader::SetPaused(bool paused) {
  paused_ = paused;
  if (paused && runner_.IsRunning()) {
    interrupted_ = true;
    runner_.Kill();
  }
  if (!paused) BeginSoon();
}

void FactsReader::SetTimeLimits(std::chrono::seconds file, std::chrono::milliseconds silence) {
  fileLimit_ = file;
  silenceLimit_ = silence;
}

bool FactsReader::IsReading() const {
  return runner_.IsRunning();
}

int FactsReader::Left() const {
  return static_cast<int>(waiting_.size()) + unanswered_.size();
}

void FactsReader::Enqueue(const QStringList& paths) {
  for (const QString& path : paths) {
    if (isWaiting_.contains(path)) continue;
    isWaiting_.insert(path);
    waiting_.push_back(path);
  }
  BeginSoon();
}

void FactsReader::EnqueueNewRows(int first, int last) {
  QStringList paths;
  for (int row = first; row <= last; ++row) {
    if (model_.Row(row).state == FileState::kNew) paths += model_.Row(row).path;
  }
  Enqueue(paths);
}

// Rows mostly come in several batches.
void FactsReader::BeginSoon() {
  if (!runner_.IsRunning() && !paused_ && !waiting_.empty()) begin_.start(0);
}

QStringList FactsReader::TakeNext() {
  QStringList paths;
  while (!waiting_.empty() && paths.size() < most_) {
    const QString path = std::move(waiting_.front());
    waiting_.pop_front();
    isWaiting_.remove(path);
    if (model_.RowOf(path) >= 0) paths += path;
  }
  return paths;
}

void FactsReader::Begin() {
  if (runner_.IsRunning() || paused_) return;
  inHand_ = TakeNext();
  unanswered_ = QSet<QString>(inHand_.begin(), inHand_.end());
  answered_ = 0;
  interrupted_ = false;
  passwordsInHand_ = passwords_;
  if (inHand_.isEmpty()) {
    emit progress(0);
    return;
  }
  QVector<FileStateChange> changes;
  for (const QString& path : qAsConst(inHand_)) changes.append({path, FileState::kReading, {}});
  SetReadingStates(changes);
  RunnerRequest request;
  request.arguments = QStringList{QStringLiteral("show"), QStringLiteral("--json"), QStringLiteral("--timeout"),
                                  QString::number(fileLimit_.count())};
  request.files = inHand_;
  request.passwords = passwords_;
  request.silenceLimit = silenceLimit_;
  runner_.Start(request);
}

void FactsReader::SetReadingStates(const QVector<FileStateChange>& changes) {
  QVector<FileStateChange> fitting;
  for (const FileStateChange& change : changes) {
    const int row = model_.RowOf(change.path);
    if (row >= 0 && IsAboutReading(model_.Row(row).state)) fitting.append(change);
  }
  model_.SetStates(fitting);
}

void FactsReader::Take(const QVector<RunnerRecord>& records) {
  QVector<QPair<QString, std::optional<FileFacts>>> facts;
  QVector<FileStateChange> changes;
  QStringList again;
  for (const RunnerRecord& record : records) {
    const QString path = record.json.value(QLatin1String("file")).toString();
    if (!unanswered_.remove(path)) continue;
    ++answered_;
    const QString error = record.json.value(QLatin1String("error")).toString();
    const bool needsPassword = RecordTexts::IsAboutPassword(error);
    if (needsPassword && passwords_ != passwordsInHand_) again += path;
    if (error.isEmpty()) {
      facts.append({path, FactsOf(record.json)});
      changes.append({path, FileState::kReady, {}});
    } else {
      facts.append({path, std::nullopt});
      changes.append(
          {path, needsPassword ? FileState::kNeedsPassword : FileState::kUnreadable, RecordTexts::PlainReason(error)});
    }
  }
  model_.SetFacts(facts);
  SetReadingStates(changes);
  Enqueue(again);
  emit progress(Left());
}

void FactsReader::End(const RunnerResult& result) {
  if (unanswered_.isEmpty()) {
    blamed_ = 0;
    most_ = std::min(most_ * kFewer, kMostFiles);
  } else {
    EndEarly(result);
  }
  inHand_.clear();
  unanswered_.clear();
  emit progress(Left());
  BeginSoon();
}

void FactsReader::EndEarly(const RunnerResult& result) {
  const bool refused = !result.started || (result.exitCode >= kExitUsage && result.exitCode < kExitSignalBase);
  if (interrupted_) return PutBack();
  if (refused && answered_ == 0) return GiveUp(result.error);
  if (result.exitCode == kExitDone || result.exitCode == kExitSomeFailed) {
    return Blame(result.error.isEmpty() ? tr("vorlane-run says nothing about this file.") : result.error);
  }
  if (answered_ > 0) return PutBack();
  if (inHand_.size() > 1) {
    most_ = std::max(inHand_.size() / kFewer, 1);
    return PutBack();
  }
  Blame(result.error);
  if (++blamed_ >= kMostBlamed) GiveUp(result.error);
}

// In their order, before those that wait.
void FactsReader::PutBack() {
  for (auto path = inHand_.crbegin(); path != inHand_.crend(); ++path) {
    if (!unanswered_.contains(*path) || isWaiting_.contains(*path)) continue;
    isWaiting_.insert(*path);
    waiting_.push_front(*path);
  }
}

void FactsReader::Blame(const QString& reason) {
  QVector<FileStateChange> changes;
  for (const QString& path : qAsConst(unanswered_)) changes.append({path, FileState::kUnreadable, reason});
  SetReadingStates(changes);
}

void FactsReader::GiveUp(const QString& message) {
  QVector<FileStateChange> changes;
  for (const QString& path : model_.PathsWith(FileState::kReading)) changes.append({path, FileState::kNew, {}});
  model_.SetStates(changes);
  waiting_.clear();
  isWaiting_.clear();
  blamed_ = 0;
  most_ = kMostFiles;
  emit problem(message);
}
