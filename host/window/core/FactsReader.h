// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QStringList>

#include "host/window/core/FileTableModel.h"
#include "host/window/core/RunnerProcess.h"

// Reads the facts of the model's files in the background, one `vorlane-run show --json` at a time. New rows are read
// without asking. A file on which the program crashes or hangs becomes unreadable, and the others are read.
class FactsReader : public QObject {
  Q_OBJECT

 public:
  // Keeps a reference to the model.
  explicit FactsReader(FileTableModel& model, QObject* parent = nullptr);
  ~FactsReader() override;

  // The files are read again, or for the first time. The state of a file changes only where it was about reading.
  void Refresh(const QStringList& paths);
  // The passwords to try; files that need one are read again.
  void SetPasswords(const QStringList& passwords);
  // While paused, no new program is started; the running one ends. A run has the machine for itself.
  void SetPaused(bool paused);
  bool IsReading() const;
  // How many files wait or are being read.
  int Left() const;

 signals:
  // After each batch, and when the reading ends.
  void progress(int left);
  // vorlane-run cannot be used at all: nothing more is read until Refresh() or new rows. A sentence for people.
  void problem(const QString& message);
};
