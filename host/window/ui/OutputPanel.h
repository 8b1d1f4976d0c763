// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include "host/window/core/BatchRun.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QToolButton;

// Where results go, the button that runs, the progress and what came of it.
class OutputPanel : public QWidget {
  Q_OBJECT

 public:
  explicit OutputPanel(QWidget* parent = nullptr);

  // Without passwords, which the window keeps.
  OutputChoice Output() const;
  void SetOutput(const OutputChoice& output);
  // What the button says: how many files there are, and why it cannot be pressed; empty when it can.
  void SetReady(int files, const QString& problem);

  void ShowRunning(int done, int total);
  void ShowCancelling();
  void ShowSummary(const BatchSummary& summary, bool hasResults, int unfinished);
  void ClearSummary();

 signals:
  void outputChanged();
  void runWanted();
  void cancelWanted();
  void retryWanted();
  void openResultsWanted();
  void saveReportWanted();
  void showWanted(FileState state);

 private:
  QWidget* MakeChoice();
  QWidget* MakeStatus();
  void ChooseFolder();
  void UpdateFields();

  QComboBox* place_;
  QWidget* folderRow_;
  QWidget* noFolder_;  // keeps its place
  QLineEdit* folder_;
  QCheckBox* breakSignatures_;
  QPushButton* run_;
  QPushButton* cancel_;
  QProgressBar* progress_;
  QLabel* status_;
  QPushButton* retry_;
  QPushButton* openResults_;
  QPushButton* saveReport_;
  bool running_ = false;
  QString summary_;
};
