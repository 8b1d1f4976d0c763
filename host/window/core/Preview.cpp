// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/Preview.h"

#include <QJsonArray>

#include "host/actions/UrlCheck.h"
#include "host/base/ExitCode.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/core/RunArguments.h"
#include "host/window/core/ShownText.h"

namespace {

constexpr std::chrono::milliseconds kDelay(250);
// A preview that takes longer is of no use.
constexpr int kFileSeconds = 20;
constexpr std::chrono::seconds kSilenceLimit(kFileSeconds + 10);

QString TextOf(const QJsonObject& record, const char* key) {
  return record.value(QLatin1String(key)).toString();
}

PreviewLink LinkOf(const QJsonObject& record) {
  PreviewLink link;
  link.page = record.value(QLatin1String("page")).toInt();
  link.uri = ShownText(TextOf(record, "uri"));
  link.target = ShownText(TextOf(record, "target"));
  const QJsonObject viewers = record.value(QLatin1String("viewers")).toObject();
  for (auto viewer = viewers.begin(); viewer != viewers.end(); ++viewer) {
    link.viewers.insert(viewer.key(), ShownText(viewer.value().toString()));
  }
  link.agree = record.value(QLatin1String("agree")).toBool();
  return link;
}

}  // namespace

Preview::Preview(QObject* parent) : QObject(parent) {
  delay_.setSingleShot(true);
  delay_.setInterval(kDelay);
  connect(&delay_, &QTimer::timeout, this, &Preview::Begin);
}

Preview::~Preview() {
  GiveUp();
}

void Preview::Request(const QString& file, const ActionChoice& action, const OutputChoice& output) {
  GiveUp();
  data_ = PreviewData();
  data_.file = file;
  action_ = action;
  output_ = output;
  delay_.start();
}

void Preview::Clear() {
  delay_.stop();
  GiveUp();
}

// The program only reads, so it can be killed. Its end is not waited for.
void Preview::GiveUp() {
  if (!runner_) return;
  RunnerProcess* const old = runner_.release();
  old->disconnect(this);
  if (!old->IsRunning()) return old->deleteLater();
  old->setParent(this);
  connect(old, &RunnerProcess::finished, old, &QObject::deleteLater);
  old->Kill();
}

void Preview::Run(const QStringList& arguments, void (Preview::*take)(const QVector<RunnerRecord>&),
                  void (Preview::*end)(const RunnerResult&)) {
  GiveUp();
  runner_ = std::make_unique<RunnerProcess>();
  connect(runner_.get(), &RunnerProcess::recordsReceived, this, take);
  connect(runner_.get(), &RunnerProcess::finished, this, end);
  RunnerRequest request;
  request.arguments = arguments + QStringList{QStringLiteral("--jobs"), QStringLiteral("1"),
                                              QStringLiteral("--timeout"), QString::number(kFileSeconds)};
  request.files = QStringList(data_.file);
  request.passwords = output_.passwords;
  request.silenceLimit = kSilenceLimit;
  runner_->Start(request);
}

void Preview::Begin() {
  emit started(data_.file);
  hasRecord_ = false;
  data_.error = ProblemOf(action_, output_);
  if (!data_.error.isEmpty()) return Finish();
  Run(RunArguments(action_, output_, RunKind::kDryRun), &Preview::TakeRecord, &Preview::EndDryRun);
}

void Preview::TakeRecord(const QVector<RunnerRecord>& records) {
  const QJsonObject record = records.constFirst().json;
  hasRecord_ = true;
  data_.before = TextOf(record, "baseUrlBefore");
  data_.after = TextOf(record, "baseUrlAfter");
  data_.wouldChange = TextOf(record, "status") == QLatin1String("would-change");
  data_.saveMode = TextOf(record, "saveMode");
  for (const auto& warning : record.value(QLatin1String("warnings")).toArray()) {
    // The links themselves say that better.
    if (!RecordTexts::IsAboutLinks(warning.toString())) data_.warnings += RecordTexts::PlainReason(warning.toString());
  }
  const QString reason = TextOf(record, "reason");
  data_.needsPassword = RecordTexts::IsAboutPassword(reason);
  data_.error = RecordTexts::PlainReason(reason);
}

void Preview::EndDryRun(const RunnerResult& result) {
  data_.warnings = RecordTexts::Warnings(result.messages) + data_.warnings;
  if (!hasRecord_) {
    data_.error = result.error.isEmpty() ? tr("vorlane-run says nothing about this file.")
                                         : RecordTexts::PlainReason(result.error);
  }
  if (!data_.error.isEmpty()) return Finish();
  QStringList arguments{QStringLiteral("links"), QStringLiteral("--json")};
  if (data_.after != data_.before) {
    const QString unusable = data_.after.isEmpty() ? QString() : CheckUrl(data_.after, UrlUse::kOther).error;
    if (!unusable.isEmpty()) {
      data_.warnings += tr("No viewer can use this base URL.") + QLatin1Char(' ') + RecordTexts::PlainReason(unusable);
      return Finish();
    }
    // An empty one lists what the links do without any.
    arguments += QStringLiteral("--base=") + data_.after;
  }
  Run(arguments, &Preview::TakeLinks, &Preview::EndLinks);
}

void Preview::TakeLinks(const QVector<RunnerRecord>& records) {
  for (const RunnerRecord& record : records) {
    ++data_.relativeLinks;
    const PreviewLink link = LinkOf(record.json);
    if (!link.agree) ++data_.disagreeing;
    if (data_.links.size() < PreviewData::kMostLinks) data_.links.append(link);
  }
}

void Preview::EndLinks(const RunnerResult& result) {
  if (!result.error.isEmpty()) {
    data_.warnings += tr("The links cannot be shown: %1").arg(RecordTexts::PlainReason(result.error));
  } else if (result.exitCode != kExitDone) {
    data_.warnings += tr("Not all links could be read.");
  }
  Finish();
}

void Preview::Finish() {
  GiveUp();
  PreviewData data = data_;
  data.before = ShownText(data.before);
  data.after = ShownText(data.after);
  emit changed(data);
}
