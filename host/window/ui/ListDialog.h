// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include "host/window/ui/SettingsDialogRunner.h"
#include "utils/ActionListFile.h"

class ActionCatalog;
class QLineEdit;
class QListWidget;
class QPushButton;
class SaveFooter;

// Edits an action list: its name, its actions, their order and their settings.
class ListDialog : public QDialog {
  Q_OBJECT

 public:
  // Returns the list's file, which a new name may have changed; empty when nothing was saved.
  static QString Edit(QWidget* parent, ActionCatalog& catalog, const QString& file);

 private:
  ListDialog(QWidget* parent, ActionCatalog& catalog, const QString& file);
  QWidget* MakeButtons();
  void Show(int current);
  void Update();
  ActionListFile::Entry& EntryAt(int row) { return list_.entries[static_cast<std::size_t>(row)]; }
  void Add(const QString& actionName);
  void EditSettings();
  void Move(int by);
  void Remove();
  // Whether settings were entered.
  bool Ask(ActionListFile::Entry& entry);
  QString Problem() const;
  bool MayReplace();
  void Save();

  ActionCatalog& catalog_;
  QString file_;
  const ActionListFile before_;
  ActionListFile list_;
  SettingsDialogRunner dialogs_;
  QLineEdit* name_;
  QListWidget* steps_;
  QPushButton* add_;
  QPushButton* settings_;
  QPushButton* up_;
  QPushButton* down_;
  QPushButton* remove_;
  SaveFooter* footer_;
};
