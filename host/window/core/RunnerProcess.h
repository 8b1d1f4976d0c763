// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryFile>
#include <QTimer>
#include <QVector>

#include <memory>

// What vorlane-run is asked to do.
struct RunnerRequest {
  QStringList arguments;  // without files and passwords
  // Names as NativeName::ToText has them. They reach the program through a temporary file that only this user can read.
  QStringList files;
  QStringList passwords;  // through the standard input, never on the command line
  // The program is ended when it prints nothing for this long; 0: no limit.
  std::chrono::milliseconds silenceLimit{0};
};

// One line of the program's standard output.
struct RunnerRecord {
  QByteArray line;  // without its line end
  QJsonObject json;
};

struct RunnerResult {
  int exitCode = -1;       // -1 unless the program ended by itself
  bool cancelled = false;  // by Cancel()
  // Why there is no exit code, or the records are not complete: a sentence for the user. Empty when all went well, also
  // when documents failed, and after Cancel().
  QString error;
  QStringList messages;  // the lines of the standard error, without "vorlane-run: "; at most kMostMessages
};
Q_DECLARE_METATYPE(RunnerResult)

// Runs vorlane-run, the program beside this one, and reads the JSON lines that it prints, as they come. Whatever the
// program does, finished() comes exactly once after Start(), and never from within Start().
class RunnerProcess : public QObject {
  Q_OBJECT

 public:
  static constexpr int kMostMessages = 1000;

  explicit RunnerProcess(QObject* parent = nullptr);
  // Ends a running program and waits for its end, at most about three seconds.
  ~RunnerProcess() override;

  // The program that is started. The environment's VORLANE_RUN replaces the one beside this program, for tests.
  static QString ProgramFile();

  void Start(const RunnerRequest& request);
  bool IsRunning() const;
  // Lets the program finish the files in hand (SIGTERM); ends it by force after ten seconds. A second call ends it
  // without waiting for these files, which are left as they were.
  void Cancel();
  // Ends the program by force. For programs that only read.
  void Kill();

 signals:
  // At most what the pipe to the program holds, so that a turn of the event loop stays short.
  void recordsReceived(const QVector<RunnerRecord>& records);
  void finished(const RunnerResult& result);
};
