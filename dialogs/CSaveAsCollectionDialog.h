// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QMap>
#include <QString>
#include <QVariant>

#include "dialogs/CVorlaneDialog.h"
#include "dialogs/ui_saveAsCollectionDialog.h"

/// "Add To Favorites": names an action's settings as a favorite, or writes them to a tool settings file (".tsf", an INI
/// file whose one key "ToolSettings" holds the whole map).
///
/// Construct it with the settings dialog as parent, call LoadPrefsData, then exec(). Save, enabled once the name holds
/// more than blanks, puts the name into the map under "CollectionName" and accepts; Cancel, Escape and Save Settings to
/// File reject. A file that cannot be written is not reported.
class CSaveAsCollectionDialog : public CVorlaneDialog {
  Q_OBJECT

 public:
  /// The flags are the shell's own; `flags` is not used.
  explicit CSaveAsCollectionDialog(QWidget* parent, Qt::WindowFlags flags = Qt::WindowFlags());
  ~CSaveAsCollectionDialog() override;

  /// The action's settings; owned by the caller, and outliving the dialog. Without a map nothing is saved.
  void LoadPrefsData(QMap<QString, QVariant>* prefs);
  /// What the icon button shows until the user picks another image.
  void SetCollectionIcon(const QIcon& icon);

 public Q_SLOTS:
  /// Puts the entered name into the map and accepts; nothing without a map or while Save is disabled.
  void on_Save();
  /// Lets the user pick the image of the icon button; cancelling keeps the one it has.
  void on_CollectionIcon();
  /// Enables Save while the name holds more than blanks.
  void on_UpdateUI();
  /// Asks for a file and writes the whole map to it, then rejects, also when the user names none. Nothing without a
  /// map.
  void on_SaveToFile();

 private:
  Ui_saveAsCollectionDialog ui;
  QMap<QString, QVariant>* settings = nullptr;
};
