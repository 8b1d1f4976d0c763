// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMainWindow>
#include <QTimer>

#include "host/actions/ActionCatalog.h"
#include "host/window/core/BatchRun.h"
#include "host/window/core/FactsReader.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/core/FolderScanner.h"
#include "host/window/core/Preview.h"
#include "host/window/ui/Choice.h"
#include "host/window/ui/SettingsDialogRunner.h"

class ActionsPanel;
class ChoiceCard;
class FilesView;
class NoticeBar;
class OutputPanel;
class PreviewPanel;
class QLabel;
class QSplitter;

// The window of the program: the files, what is to be done with them, a preview, and the run. Its object name makes the
// actions' dialogs take it for the host's main window.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();
  ~MainWindow() override;

  // Adds files and folders as if they were dropped; an action list or a settings file among them is chosen.
  void Open(const QStringList& paths);
  // Opens the action's settings as soon as the files are there.
  void StartWith(const QString& actionName);

 signals:
  // Both are taken from the event loop: not from within a signal or event that dialogs of theirs would hold up.
  void dropped(const QStringList& paths);
  void actionWanted(const QString& actionName);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void MakeLayout();
  void MakeMenus();
  void ConnectParts();
  void RestoreState();
  void SaveState() const;

  void AddFiles();
  void AddFolder();
  void OpenChoice();
  void Paste();
  void OpenChoiceFile(const QString& file);

  void ChooseAction(const QString& actionName);
  void Edit(const Choice& choice);
  void EditList(const QString& file);
  // Whether settings were chosen.
  bool RunSettingsDialog(const QString& actionName, const QMap<QString, QVariant>& settings, bool withDocument);
  void UseResult(const QString& actionName, const SettingsDialogRunner::Result& result);
  std::unique_ptr<HalvexPDFLibraryCPDylibCPP1311> OpenDocument();
  void SetChoice(const Choice& choice);
  void SaveFavorite(const QString& name, const QIcon& icon);
  void ShowHelp(const QString& actionName);
  void StartPending();

  OutputChoice Output() const;
  QStringList NamesFor(const QStringList& files) const;
  QString ProblemOfRun() const;
  using Beginning = decltype(&BatchRun::Start);
  void Run(const QStringList& files, Beginning begin = &BatchRun::Start);
  void Retry();
  bool AskPassword();
  void OnOutcomes(const QVector<FileOutcome>& outcomes);
  void OnFinished(const BatchSummary& summary);
  void SetRunning(bool running);
  void OpenResults();
  void SaveReport();
  void CopyCommand();

  void UpdatePreview();
  void UpdateReady();
  void UpdateStatus();
  void UpdateLayout();

  ActionCatalog catalog_;
  FileTableModel model_;
  FolderScanner scanner_;
  FactsReader facts_;
  BatchRun batch_;
  Preview preview_;
  SettingsDialogRunner dialogs_;

  Choice choice_;
  QStringList passwords_;
  QStringList changed_;  // in the running run
  QString pendingAction_;
  QTimer pendingLimit_;
  bool running_ = false;
  bool closing_ = false;

  ActionsPanel* actions_;
  ChoiceCard* card_;
  QWidget* left_;
  FilesView* files_;
  PreviewPanel* previewPanel_;
  OutputPanel* output_;
  NoticeBar* notice_;
  QSplitter* columns_;
  QSplitter* rows_;
  QLabel* count_;
  QLabel* reading_;
  QAction* showPreview_;
  QAction* run_;
  QAction* runSelected_;
  QAction* cancel_;
  QAction* edit_;
  QAction* favorite_;
  QAction* copyCommand_;
  QAction* password_;
  QAction* help_;
};
