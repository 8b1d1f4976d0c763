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
// Rows mostly come in several batches: one program for all of them is faster than two. So a program begins when no more
// rows have come for so long, but does not wait for ever.
constexpr std::chrono::milliseconds kRowsInterval(5);
constexpr std::chrono::milliseconds kLongestGathering(100);

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

FactsReader::FactsReader(FileTableModel& model, const TimeLimits& limits, QObject* parent)
    : QObject(parent), model_(model), limits_(limits), most_(kMostFiles) {
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

void FactsReader::SetPasswords(const QStringList& passwords) {
  if (passwords == passwords_) return;
  passwords_ = passwords;
  Refresh(model_.PathsWith(FileState::kNeedsPassword));
}

void FactsReader::SetPaused(bool paused) {
  paused_ = paused;
  if (paused && runner_.IsRunning()) {
    interrupted_ = true;
    runner_.Kill();
  }
  if (!paused) BeginSoon();
}

int FactsReader::Left() const {
  return static_cast<int>(waiting_.size()) + skipped_.size() + inHand_.size() - next_;
}

void FactsReader::Refresh(const QStringList& paths) {
  for (const QString& path : paths) {
    const int row = model_.RowOf(path);
    if (row < 0 || model_.Row(row).isQueued) continue;
    model_.SetQueued(row, true);
    waiting_.push_back(path);
  }
  BeginSoon();
}

void FactsReader::EnqueueNewRows(int first, int last) {
  QStringList paths;
  for (int row = first; row <= last; ++row) {
    if (model_.Row(row).state == FileState::kNew) paths += model_.Row(row).path;
  }
  Refresh(paths);
}

void FactsReader::BeginSoon() {
  if (runner_.IsRunning() || paused_ || waiting_.empty()) return;
  if (!begin_.isActive()) gathering_.start();
  const bool isEnough =
      waiting_.size() >= static_cast<std::size_t>(most_) || gathering_.hasExpired(kLongestGathering.count());
  begin_.start(isEnough ? std::chrono::milliseconds(0) : kRowsInterval);
}

QStringList FactsReader::TakeNext() {
  QStringList paths;
  while (!waiting_.empty() && paths.size() < most_) {
    const QString path = std::move(waiting_.front());
    waiting_.pop_front();
    const int row = model_.RowOf(path);
    if (row < 0 || !model_.Row(row).isQueued) continue;
    model_.SetQueued(row, false);
    paths += path;
  }
  return paths;
}

void FactsReader::Begin() {
  if (runner_.IsRunning() || paused_) return;
  inHand_ = TakeNext();
  next_ = 0;
  skipped_.clear();
  interrupted_ = false;
  passwordsInHand_ = passwords_;
  if (inHand_.isEmpty()) {
    emit progress(0);
    return;
  }
  model_.SetReading(inHand_);
  RunnerRequest request;
  request.arguments = QStringList{QStringLiteral("show"), QStringLiteral("--json"), QStringLiteral("--timeout"),
                                  QString::number(limits_.file.count())};
  request.files = inHand_;
  request.passwords = passwords_;
  request.silenceLimit = limits_.silence;
  runner_.Start(request);
}

void FactsReader::Take(const QVector<RunnerRecord>& records) {
  QVector<FileReading> readings;
  QStringList again;
  for (const RunnerRecord& record : records) {
    const QString path = record.json.value(QLatin1String("file")).toString();
    const auto found = std::find(inHand_.cbegin() + next_, inHand_.cend(), path);
    if (found == inHand_.cend()) continue;
    const int place = static_cast<int>(found - inHand_.cbegin());
    skipped_ += inHand_.mid(next_, place - next_);
    next_ = place + 1;
    const QString error = record.json.value(QLatin1String("error")).toString();
    const bool needsPassword = RecordTexts::IsAboutPassword(error);
    if (needsPassword && passwords_ != passwordsInHand_) again += path;
    if (error.isEmpty()) {
      readings.append({path, FactsOf(record.json), FileState::kReady, {}});
    } else {
      readings.append({path, std::nullopt, needsPassword ? FileState::kNeedsPassword : FileState::kUnreadable,
                       RecordTexts::PlainReason(error)});
    }
  }
  model_.SetReadings(readings);
  Refresh(again);
  emit progress(Left());
}

QStringList FactsReader::Unanswered() const {
  return skipped_ + inHand_.mid(next_);
}

void FactsReader::End(const RunnerResult& result) {
  if (Unanswered().isEmpty()) {
    blamed_ = 0;
    most_ = std::min(most_ * kFewer, kMostFiles);
  } else {
    EndEarly(result);
  }
  inHand_.clear();
  skipped_.clear();
  next_ = 0;
  emit progress(Left());
  BeginSoon();
}

void FactsReader::EndEarly(const RunnerResult& result) {
  const bool refused = !result.started || (result.exitCode >= kExitUsage && result.exitCode < kExitSignalBase);
  if (interrupted_) return PutBack();
  const bool hasAnswered = next_ > 0;
  if (refused && !hasAnswered) return GiveUp(result.error);
  if (result.exitCode == kExitDone || result.exitCode == kExitSomeFailed) {
    return Blame(result.error.isEmpty() ? tr("vorlane-run says nothing about this file.") : result.error);
  }
  if (hasAnswered) return PutBack();
  if (inHand_.size() > 1) {
    most_ = std::max(inHand_.size() / kFewer, 1);
    return PutBack();
  }
  Blame(result.error);
  if (++blamed_ >= kMostBlamed) GiveUp(result.error);
}

// In their order, before those that wait.
void FactsReader::PutBack() {
  const QStringList paths = Unanswered();
  for (auto path = paths.crbegin(); path != paths.crend(); ++path) {
    const int row = model_.RowOf(*path);
    if (row < 0 || model_.Row(row).isQueued) continue;
    model_.SetQueued(row, true);
    waiting_.push_front(*path);
  }
}

void FactsReader::Blame(const QString& reason) {
  QVector<FileReading> readings;
  for (const QString& path : Unanswered()) readings.append({path, std::nullopt, FileState::kUnreadable, reason});
  model_.SetReadings(readings);
}

void FactsReader::GiveUp(const QString& message) {
  QVector<FileStateChange> changes;
  for (const QString& path : model_.PathsWith(FileState::kReading)) changes.append({path, FileState::kNew, {}});
  model_.SetStates(changes);
  for (const QString& path : waiting_) {
    if (const int row = model_.RowOf(path); row >= 0) model_.SetQueued(row, false);
  }
  waiting_.clear();
  blamed_ = 0;
  most_ = kMostFiles;
  emit problem(message);
}
