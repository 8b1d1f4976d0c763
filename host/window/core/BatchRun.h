// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include "host/window/core/ActionChoice.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/core/RunnerProcess.h"

// How a run ended. Each file counts once, in the first four numbers.
struct BatchSummary {
  int done = 0;
  int unchanged = 0;
  int failed = 0;  // with those that need a password
  int cancelled = 0;
  int needPassword = 0;  // among those that failed
  bool wasCancelled = false;
  QString error;         // why the run as a whole went wrong, a sentence for people; empty when it did not
  QStringList messages;  // what vorlane-run printed that is not about one file
};
Q_DECLARE_METATYPE(BatchSummary)

// What a run did with one file.
struct FileOutcome {
  FileStateChange change;
  QString output;   // the file that was written; empty when none was
  QString backup;   // the original, kept beside it; empty without one
  QString baseUrl;  // after the run
  QStringList warnings;
};

// Runs what was chosen over files with vorlane-run and follows the report that it prints.
class BatchRun : public QObject {
  Q_OBJECT

 public:
  explicit BatchRun(QObject* parent = nullptr);
  // Ends a running program as ~RunnerProcess does.
  ~BatchRun() override;

  // Not while a run is going on. The names are paths, or FileTableModel::NamesForFolder of them; signals have the
  // paths. All files change to kWaiting first; a file that is named twice counts once. finished() comes exactly once,
  // never from within this call, also when ProblemOf() has something against the choices.
  void Start(const QStringList& names, const ActionChoice& action, const OutputChoice& output);
  // As Start, for Unfinished() of the last run. The summary, the report and the output folders are those of both runs
  // then.
  void TryAgain(const QStringList& names, const ActionChoice& action, const OutputChoice& output);
  bool IsRunning() const;
  // As RunnerProcess::Cancel: the files in hand are finished, the others are cancelled. A second call gives up those in
  // hand too.
  void Cancel();

  int Total() const;
  int Done() const;  // files with an outcome
  // Files that failed or were cancelled, in their order.
  QStringList Unfinished() const;
  // The folders of the files that were written, each once, in their order.
  QStringList OutputFolders() const;
  // Writes the report, in the form that the file's ending asks for: a table (".csv"), one JSON object a line
  // (".jsonl"), or an array of them. reportSaved() comes once.
  void SaveReport(const QString& file);

 signals:
  void filesChanged(const QVector<FileOutcome>& outcomes);
  void progress(int done, int total);
  void finished(const BatchSummary& summary);
  // `problem` is empty, or a sentence for people.
  void reportSaved(const QString& problem);

 private:
  struct ReportLine {
    QString file;
    QByteArray text;
  };
  void Begin(const QStringList& names, const ActionChoice& action, const OutputChoice& output);
  void Take(const QVector<RunnerRecord>& records);
  FileOutcome OutcomeOf(const QString& file, const QJsonObject& record);
  void End(const RunnerResult& result);
  QByteArray ReportLines() const;
  void SaveTable(const QString& file);
  BatchSummary Counts() const;
  // State and reason of the files without a record.
  FileStateChange Leftover(const RunnerResult& result) const;
  void Settle(const QVector<FileOutcome>& outcomes);

  RunnerProcess runner_;
  QTimer refuse_;
  RunnerResult refusal_;
  QStringList files_;
  QSet<QString> open_;  // without an outcome
  QHash<QString, FileState> settled_;
  QStringList outputFolders_;
  QVector<ReportLine> report_;
  bool running_ = false;
};
