// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMainWindow>

// The window of the program. Its object name makes the actions' dialogs take it for the host's main window.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();

  // Adds files and folders as if they were dropped; action lists and settings files are opened.
  void Open(const QStringList& paths);
};
