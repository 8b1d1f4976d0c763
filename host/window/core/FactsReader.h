// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include "host/window/core/FileTableModel.h"
#include "host/window/core/RunnerProcess.h"

// Reads the facts of the model's files in the background, one `vorlane-run show --json` at a time. New rows are read
// without asking. A file on which the program crashes or hangs becomes unreadable, and the others are read.
class FactsReader : public QObject {
  Q_OBJECT

 public:
  struct TimeLimits {
    std::chrono::seconds file{60};             // how long one file may take
    std::chrono::milliseconds silence{90000};  // how long vorlane-run may print nothing
  };

  // Keeps a reference to the model.
  explicit FactsReader(FileTableModel& model, QObject* parent = nullptr) : FactsReader(model, TimeLimits(), parent) {}
  FactsReader(FileTableModel& model, const TimeLimits& limits, QObject* parent = nullptr);
  ~FactsReader() override;

  // The files are read again, or for the first time. The state of a file changes only where it was about reading.
  void Refresh(const QStringList& paths);
  // The passwords to try; files that need one are read again.
  void SetPasswords(const QStringList& passwords);
  // While paused, nothing is read, so that a run has the machine for itself.
  void SetPaused(bool paused);
  // How many files wait or are being read.
  int Left() const;

 signals:
  // After each batch, and when the reading ends.
  void progress(int left);
  // vorlane-run cannot be used at all: nothing more is read until Refresh() or new rows. A sentence for people.
  void problem(const QString& message);

 private:
  void EnqueueNewRows(int first, int last);
  void BeginSoon();
  void Begin();
  QStringList TakeNext();
  // Of the files in hand those without a record.
  QStringList Unanswered() const;
  void PutBack();
  void Take(const QVector<RunnerRecord>& records);
  void End(const RunnerResult& result);
  void EndEarly(const RunnerResult& result);
  void Blame(const QString& reason);
  void GiveUp(const QString& message);

  FileTableModel& model_;
  const TimeLimits limits_;
  RunnerProcess runner_;
  std::deque<QString> waiting_;  // their rows are queued
  QStringList inHand_;           // of the running program, which answers in their order
  int next_ = 0;                 // of these, the first after the last answer
  QStringList skipped_;          // of those before it, the ones without an answer
  int most_;                     // files for one program
  int blamed_ = 0;               // files in a row with which the program could do nothing
  QStringList passwords_;
  QStringList passwordsInHand_;
  bool paused_ = false;
  bool interrupted_ = false;  // by SetPaused
  QTimer begin_;
  QElapsedTimer gathering_;  // since the first of the rows came for which begin_ waits
};
