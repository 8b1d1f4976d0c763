// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RunnerProcess.h"

#include <algorithm>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>
#include <utility>

#include "host/base/ExitCode.h"
#include "host/base/NativeName.h"

namespace {

// Records are passed on so often: seldom enough that painting them does not slow the program down.
constexpr int kGatherMs = 50;
// Or earlier when there are so many.
constexpr int kMostRecords = 2000;
// So many bytes are read at once, which take a few milliseconds to parse.
constexpr int kPiece = 1 << 17;
// Longer lines take too long to parse at once. The longest record holds a base URL of a few bytes.
constexpr int kLongestLine = 1 << 22;
constexpr int kLongestMessage = 4096;
// How long the destructor waits, in milliseconds: for the end of the program with its files in hand, for its end
// without them, for its removal by the system.
constexpr int kEndWaits[] = {300, 2500, 1000};

QString gProgramFile;

// In memory first, where the user has a folder there: a busy disk would make the window wait. The next folder is for
// when the one before it is full or cannot be written.
QStringList ListFolders() {
  const QString runtime = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
  QStringList folders{QDir::tempPath(), QStandardPaths::writableLocation(QStandardPaths::CacheLocation)};
  if (QDir::isAbsolutePath(runtime)) folders.prepend(runtime);
  folders.removeDuplicates();
  return folders;
}

// Nothing when not all could be written; `*error` says why.
std::unique_ptr<QTemporaryFile> WriteTemporary(const QString& folder, const QByteArray& bytes, QString* error) {
  auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/vorlane-XXXXXX"));
  if (file->open() && file->write(bytes) == bytes.size() && file->flush()) return file;
  *error = file->errorString();
  return nullptr;
}

std::string_view View(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

QString RunnerProcess::ProgramFile() {
  return gProgramFile.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/vorlane-run")
                                : gProgramFile;
}

void RunnerProcess::SetProgramFile(const QString& file) {
  gProgramFile = file;
}

RunnerProcess::RunnerProcess(QObject* parent) : QObject(parent) {
  for (auto* const timer : {&gather_, &readOn_}) timer->setSingleShot(true);
  connect(&process_, &QProcess::readyReadStandardOutput, this, &RunnerProcess::ReadOn);
  connect(&readOn_, &QTimer::timeout, this, &RunnerProcess::ReadOn);
  connect(&gather_, &QTimer::timeout, this, &RunnerProcess::PassOn);
  connect(&process_, &QProcess::readyReadStandardError, this,
          [this] { TakeMessages(process_.readAllStandardError()); });
  connect(&process_, &QProcess::errorOccurred, this, &RunnerProcess::Fail);
  connect(&process_, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &RunnerProcess::End);
  silence_.setSingleShot(true);
  connect(&silence_, &QTimer::timeout, this, [this] {
    silent_ = true;
    Kill();
  });
  giveUp_.setSingleShot(true);
  connect(&giveUp_, &QTimer::timeout, this, &RunnerProcess::Finish);
  force_.setSingleShot(true);
  connect(&force_, &QTimer::timeout, &process_, &QProcess::kill);
}

RunnerProcess::~RunnerProcess() {
  process_.disconnect(this);
  for (const int wait : kEndWaits) {
    if (process_.state() == QProcess::NotRunning) return;
    wait == kEndWaits[2] ? process_.kill() : process_.terminate();
    process_.waitForFinished(wait);
  }
}

bool RunnerProcess::IsRunning() const {
  return running_;
}

void RunnerProcess::Start(const RunnerRequest& request) {
  Q_ASSERT(!running_);
  running_ = true;
  silent_ = false;
  skipping_ = false;
  unreadable_ = 0;
  pending_.clear();
  pendingMessage_.clear();
  lastLine_.clear();
  result_ = RunnerResult();
  QStringList arguments = request.arguments;
  if (!request.passwords.isEmpty()) arguments += {QStringLiteral("--password-file"), QStringLiteral("-")};
  if (!request.files.isEmpty()) {
    if (!WriteList(request.files)) return;
    arguments += {QStringLiteral("--files-from"), list_->fileName()};
  }
  silence_.setInterval(request.silenceLimit);
  force_.setInterval(request.cancelLimit);
  process_.start(ProgramFile(), arguments);
  if (silence_.interval() > 0) silence_.start();
  for (const QString& password : request.passwords) process_.write(NativeName::ToBytes(password) + '\n');
  process_.closeWriteChannel();
}

bool RunnerProcess::WriteList(const QStringList& files) {
  QByteArray names;
  for (const QString& file : files) names += NativeName::ToBytes(file) + '\0';
  const QStringList folders = ListFolders();
  QDir().mkpath(folders.constLast());
  QString error;
  for (auto folder = folders.begin(); folder != folders.end() && !list_; ++folder) {
    list_ = WriteTemporary(*folder, names, &error);
  }
  if (!list_) {
    GiveUp(tr("No temporary file can be written (%1). Free some space on the disk of one of these folders, then try "
              "again: %2")
               .arg(error, folders.join(QStringLiteral(", "))));
  }
  return list_ != nullptr;
}

// finished() never comes from within Start().
void RunnerProcess::GiveUp(const QString& error) {
  result_.started = false;
  result_.error = error;
  giveUp_.start();
}

void RunnerProcess::Cancel() {
  if (!running_) return;
  result_.cancelled = true;
  process_.terminate();
  if (!force_.isActive()) force_.start();
}

void RunnerProcess::Kill() {
  process_.kill();
}

// Lines are parsed as they come, so that little is left to do when the program ends.
void RunnerProcess::ReadOn() {
  TakeOutput(process_.read(kPiece));
  if (process_.bytesAvailable() > 0) readOn_.start();
}

void RunnerProcess::PassOn() {
  gather_.stop();
  const QVector<RunnerRecord> records = std::exchange(records_, {});
  if (!records.isEmpty()) emit recordsReceived(records);
}

void RunnerProcess::TakeOutput(const QByteArray& bytes) {
  if (silence_.isActive()) silence_.start();
  int begin = 0;
  for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', begin)) {
    TakeLine(pending_.isEmpty() ? bytes.mid(begin, end - begin) : pending_ + bytes.mid(begin, end - begin));
    pending_.clear();
    skipping_ = false;
    begin = end + 1;
  }
  if (!skipping_) pending_ += bytes.mid(begin);
  if (pending_.size() > kLongestLine) {
    skipping_ = true;
    pending_.clear();
  }
  if (records_.size() >= kMostRecords) return PassOn();
  if (!records_.isEmpty() && !gather_.isActive()) gather_.start(kGatherMs);
}

void RunnerProcess::TakeLine(const QByteArray& line) {
  const QJsonDocument json = skipping_ ? QJsonDocument() : QJsonDocument::fromJson(line);
  if (json.isObject()) {
    records_.append({line, json.object()});
  } else {
    ++unreadable_;
  }
}

void RunnerProcess::TakeMessages(const QByteArray& bytes) {
  if (silence_.isActive()) silence_.start();
  pendingMessage_ += bytes;
  int begin = 0;
  for (int end = pendingMessage_.indexOf('\n'); end >= 0; end = pendingMessage_.indexOf('\n', begin)) {
    TakeMessage(pendingMessage_.mid(begin, end - begin));
    begin = end + 1;
  }
  pendingMessage_ = pendingMessage_.mid(begin).left(kLongestMessage);
}

void RunnerProcess::TakeMessage(const QByteArray& line) {
  const QString text = NativeName::ToText(View(line.left(kLongestMessage))).trimmed();
  static const QString self = QStringLiteral("vorlane-run: ");
  if (!text.startsWith(self)) {
    if (!text.isEmpty()) lastLine_ = text;
    return;
  }
  result_.messages += text.mid(self.size());
  if (result_.messages.size() > kMostMessages) result_.messages.removeAt(kMostMessages / 2);
}

void RunnerProcess::Fail(QProcess::ProcessError error) {
  // After the other errors the program still ends.
  if (error != QProcess::FailedToStart) return;
  GiveUp(tr("Cannot start %1 (%2). It belongs to this program; please install it again.")
             .arg(ProgramFile(), process_.errorString()));
}

void RunnerProcess::End(int code, QProcess::ExitStatus status) {
  readOn_.stop();
  while (process_.bytesAvailable() > 0) TakeOutput(process_.read(kPiece));
  // The unfinished last line of a killed program does not count.
  const bool isCut = status == QProcess::CrashExit;
  if ((skipping_ || !pending_.isEmpty()) && !isCut) TakeOutput("\n");
  PassOn();
  TakeMessages(process_.readAllStandardError() + '\n');
  if (status == QProcess::NormalExit) result_.exitCode = code;
  if (!result_.cancelled) result_.error = ErrorOf(code, status);
  Finish();
}

QString RunnerProcess::ErrorOf(int code, QProcess::ExitStatus status) const {
  if (silent_) {
    return tr("vorlane-run did not answer for %1 seconds and was ended.").arg(silence_.interval() / 1000.0);
  }
  if (status == QProcess::CrashExit) return tr("vorlane-run ended unexpectedly (signal %1).").arg(code);
  if (code > kExitSignalBase) return tr("vorlane-run was interrupted by another program.");
  if (code >= kExitUsage) {
    if (!result_.messages.isEmpty()) return result_.messages.constLast();
    return tr("vorlane-run ended with the code %1. %2").arg(code).arg(lastLine_).trimmed();
  }
  if (unreadable_ == 0) return {};
  return tr("vorlane-run printed lines that cannot be read (%1). It may be of another version than this program.")
      .arg(unreadable_);
}

void RunnerProcess::Finish() {
  silence_.stop();
  force_.stop();
  list_.reset();
  pending_.clear();
  running_ = false;
  const RunnerResult result = std::move(result_);
  emit finished(result);
}
