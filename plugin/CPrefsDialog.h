// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QMap>
#include <QString>
#include <QVariant>

#include "dialogs/CVorlaneDialog.h"
#include "ui_SetBaseURLPrefsDialog.h"

/// "Set Base URL": edits the action's one setting, the base URL. Any text is a valid one, the empty text included.
///
/// OK and Return accept. Either toolbar button stores what is entered, as an action list or as a favorite, and then
/// rejects. Opened from a preview window, the dialog remembers its geometry.
class CPrefsDialog : public CVorlaneDialog {
  Q_OBJECT

 public:
  /// The flags are the shell's own; `flags` is not used.
  explicit CPrefsDialog(QWidget* parent, Qt::WindowFlags flags = Qt::WindowFlags());
  ~CPrefsDialog() override;

  /// Shows the setting "baseUrlString"; a null map changes nothing.
  void SetPrefs(QMap<QString, QVariant>* settings);
  /// Writes "baseUrlString" and "ActionName" and leaves other keys alone; false for a null map.
  bool GetPrefs(QMap<QString, QVariant>* settings);

 public Q_SLOTS:
  void on_VDShowSaveDialog();
  void on_VDShowSaveCollectionDialog();

 private:
  Ui_SetBaseURLPrefsDialog ui;
  QIcon icon;
};
