// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "dialogs/CVorlaneDialog.h"
#include "dialogs/ui_saveAsActionlistDialog.h"

/// "Add To Action": asks for a name and a category and stores an action's settings as a new action list, over an
/// existing one, or at the end of an existing one (CActionUtils::SaveAsCustomActionList).
///
/// Construct it with the settings dialog as parent, call LoadPrefsData, then exec(). Save, enabled once the name holds
/// more than blanks, accepts; Cancel and Escape reject and leave the map and the files alone. A file that cannot be
/// written is not reported: the dialog accepts all the same.
class CSaveAsActionlistDialog : public CVorlaneDialog {
  Q_OBJECT

 public:
  /// The flags are the shell's own; `flags` is not used.
  explicit CSaveAsActionlistDialog(QWidget* parent, Qt::WindowFlags flags = Qt::WindowFlags());
  ~CSaveAsActionlistDialog() override;

  /// The action's settings, "ActionName" among them; owned by the caller, and outliving the dialog. Saving adds the
  /// keys "ActionListName", "ActionListCategory" and "ActionListOverwrite", and takes them and "ActionName" out again
  /// when it makes a list. Without a map Save does nothing.
  void LoadPrefsData(QMap<QString, QVariant>* prefs);

 Q_SIGNALS:
  /// An action was added to an existing list; the name is as typed.
  void actionListChanged(QString name);

 public Q_SLOTS:
  /// Stores the settings under the entered name and accepts; nothing without a map or while Save is disabled.
  void on_Save();
  /// Enables Save while the name holds more than blanks.
  void on_UpdateUI();

 protected:
  /// Return saves once, Escape rejects.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Ui_saveAsActionlistDialog ui;
  QMap<QString, QVariant>* settings = nullptr;
};
