// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSortFilterProxyModel>
#include <QWidget>

class FileTableModel;
class QAction;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QTableView;

// Sorts and filters the table; the headings of numbers stand above the numbers.
class FilesProxy : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
};

// The table of the files with its filter, and an invitation while it is empty.
class FilesView : public QWidget {
  Q_OBJECT

 public:
  // Keeps a reference to the model.
  explicit FilesView(FileTableModel& model, QWidget* parent = nullptr);

  // The file on which the cursor is; empty without one.
  QString CurrentFile() const;
  QStringList SelectedFiles() const;
  void FocusFilter();
  void SetFilter(const QString& text);
  // Sorts and filters anew by what the rows say now; rows stay where they are while they change.
  void Arrange();
  // Rows cannot be removed while a run goes on.
  void SetRunning(bool running);

  // Column widths and the sorting.
  QByteArray SaveLayout() const;
  void RestoreLayout(const QByteArray& layout);

  // For the window's menus.
  QList<QAction*> EditActions() const { return {copy_, copyCell_, selectAll_}; }
  QList<QAction*> FileActions() const { return {open_, showInFolder_, remove_}; }

 signals:
  void addFilesWanted();
  void addFolderWanted();
  void passwordWanted();
  void currentFileChanged(const QString& path);
  void selectionChanged();

 private:
  // The names are those of the two buttons.
  QWidget* MakeAddButtons(const char* filesName, const char* folderName);
  QWidget* MakeEmptyPage();
  void MakeTable();
  void MakeActions();
  void ShowMenu(const QPoint& position);
  void CopyRows() const;
  void CopyCell() const;
  void RemoveSelected();
  void UpdateActions();
  void ShowPage(int page);
  void UpdatePage();
  void ShowReasons(int first, int last);

  FileTableModel& model_;
  FilesProxy proxy_;
  QLineEdit* filter_;
  QLabel* count_;
  QStackedWidget* pages_;
  QTableView* table_;
  QAction* open_;
  QAction* showInFolder_;
  QAction* remove_;
  QAction* copy_;
  QAction* copyCell_;
  QAction* selectAll_;
  bool running_ = false;
};
