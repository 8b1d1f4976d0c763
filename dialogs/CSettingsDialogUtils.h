// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QMap>
#include <QString>
#include <QVariant>

class CVorlaneDialog;

/// What all settings dialogs have in common. All members are static and for the GUI thread.
///
/// A settings dialog derives from CVorlaneDialog and has a form with a "main_widget", the members
///
///     void SetPrefs(QMap<QString, QVariant>*);  // shows the settings of the map
///     bool GetPrefs(QMap<QString, QVariant>*);  // writes what is entered into it, and "ActionName", the action's name
///
/// and the slots on_VDShowSaveDialog() and on_VDShowSaveCollectionDialog(). The rest is one call each:
/// Complete at the end of its constructor, RememberGeometry in its destructor, AddToActionList and AddToFavorites in
/// the slots. The action opens it by ShowSettingsDialog (plugin/ShowSettingsDialog.h).
class CSettingsDialogUtils {
 public:
  CSettingsDialogUtils() = delete;

  /// After the form's setupUi: puts the window's title into the header and the form into the content area, at its own
  /// fixed size, adds the toolbar's and the close button, and, under a preview window, restores the remembered
  /// geometry. Afterwards every widget of the form has its size; set up pickers, which need it, there.
  static void Complete(CVorlaneDialog* dialog, QWidget* form);
  /// Under a preview window, stores the dialog's geometry under its object name. A file that cannot be written is not
  /// reported.
  static void RememberGeometry(const CVorlaneDialog* dialog);

  /// Runs "Add To Action" with the settings that the dialog's GetPrefs writes, then rejects the dialog.
  template <class SettingsDialog>
  static void AddToActionList(SettingsDialog* dialog) {
    QMap<QString, QVariant> settings;
    dialog->GetPrefs(&settings);
    RunActionListDialog(dialog, &settings);
  }
  /// Runs "Add To Favorites" with the settings that the dialog's GetPrefs writes, then rejects the dialog.
  template <class SettingsDialog>
  static void AddToFavorites(SettingsDialog* dialog) {
    QMap<QString, QVariant> settings;
    dialog->GetPrefs(&settings);
    RunFavoritesDialog(dialog, &settings);
  }

  /// The icon of an action from its GetDefaultIcon(): the names of the normal, selected and disabled image below
  /// ":/Vorlane/Resources/Tools/", joined by "#". An image that does not exist is empty.
  static QIcon ActionIcon(const QString& fileNames);

 private:
  static void RunActionListDialog(CVorlaneDialog* dialog, QMap<QString, QVariant>* settings);
  static void RunFavoritesDialog(CVorlaneDialog* dialog, QMap<QString, QVariant>* settings);
};
