// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryFile>
#include <QTimer>
#include <QVector>

// What vorlane-run is asked to do.
struct RunnerRequest {
  QStringList arguments;  // without files and passwords
  // Names as NativeName::ToText has them. They reach the program through a temporary file that only this user can read.
  QStringList files;
  QStringList passwords;  // through the standard input, never on the command line
  // The program is ended when it prints nothing for this long; 0: no limit.
  std::chrono::milliseconds silenceLimit{0};
  // How long the program may take to end after Cancel(), before it is ended by force.
  std::chrono::milliseconds cancelLimit{10000};
};

// One line of the program's standard output.
struct RunnerRecord {
  QByteArray line;  // without its line end
  QJsonObject json;
};

struct RunnerResult {
  bool started = true;
  int exitCode = -1;       // -1 unless the program ended by itself
  bool cancelled = false;  // by Cancel()
  // Why there is no exit code, or the records are not complete: a sentence for the user. Empty when all went well, also
  // when documents failed, and after Cancel().
  QString error;
  // What the program printed about itself, without "vorlane-run: ": the first and the last kMostMessages / 2. What it
  // prints about single files is in the records too.
  QStringList messages;
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

  // The program that is started: the one beside this program, unless a test has set another.
  static QString ProgramFile();
  static void SetProgramFile(const QString& file);

  // Not while the program runs.
  void Start(const RunnerRequest& request);
  bool IsRunning() const;
  // Lets the program finish the files in hand (SIGTERM), and ends it by force after the request's limit. A second call
  // ends it without waiting for these files, which are left as they were.
  void Cancel();
  // Ends the program by force. For programs that only read.
  void Kill();

 signals:
  // What came within a twentieth of a second: not more, so that a turn of the event loop stays short, and not
  // less, since each batch paints the window.
  void recordsReceived(const QVector<RunnerRecord>& records);
  void finished(const RunnerResult& result);

 private:
  bool WriteList(const QStringList& files);
  void GiveUp(const QString& error);
  void ReadOn();
  void PassOn();
  void TakeOutput(const QByteArray& bytes);
  void TakeLine(const QByteArray& line);
  void TakeMessages(const QByteArray& bytes);
  void TakeMessage(const QByteArray& line);
  void Fail(QProcess::ProcessError error);
  void End(int code, QProcess::ExitStatus status);
  QString ErrorOf(int code, QProcess::ExitStatus status) const;
  void Finish();

  QProcess process_;
  std::unique_ptr<QTemporaryFile> list_;
  QTimer readOn_;
  QTimer gather_;
  QVector<RunnerRecord> records_;  // for which gather_ waits
  QTimer giveUp_;
  QTimer silence_;
  QTimer force_;
  bool running_ = false;
  bool silent_ = false;    // it was ended because it printed nothing
  QByteArray pending_;     // the start of a line of the standard output
  bool skipping_ = false;  // that line is too long; the rest of it is left out
  int unreadable_ = 0;     // lines that are no records
  QByteArray pendingMessage_;
  QString lastLine_;  // of the standard error, if it is about something else, as the dynamic loader's is
  RunnerResult result_;
};
