// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CSettingsDialogUtils.h"

#include <QLabel>
#include <QPixmap>
#include <QPointer>

#include "dialogs/CSaveAsActionlistDialog.h"
#include "dialogs/CSaveAsCollectionDialog.h"
#include "utils/CUtils.h"
#include "utils/KitResources.h"
#include "utils/SettingsFile.h"

namespace {

constexpr QSize kFavoriteIconSize(128, 128);

QString geometryFile() {
  return CUtils::GetSettingsFolder() + QString("/VorlaneViewerSettings.vsf");
}

QString geometryKey(const QObject& dialog) {
  return dialog.objectName() + QString("geometry");
}

// Runs and destroys a save dialog; false when it was destroyed meanwhile, together with the settings dialog.
template <class SaveDialog>
bool runSaveDialog(const QPointer<SaveDialog> dialog, QMap<QString, QVariant>* settings) {
  dialog->setWindowFlags(dialog->windowFlags() & ~Qt::WindowContextHelpButtonHint);
  dialog->LoadPrefsData(settings);
  dialog->exec();
  if (!dialog) return false;
  delete dialog;
  return true;
}

}  // namespace

void CSettingsDialogUtils::Complete(CVorlaneDialog* dialog, QWidget* form) {
  dialog->VDtitleLabel->setText(dialog->windowTitle());
  dialog->VDaddMainWidget(form, true);
  dialog->VDaddTopButtons();
  dialog->VDaddCloseButton();
  if (!dialog->VDisInPreview()) return;
  const SettingsFile remembered(geometryFile());
  dialog->restoreGeometry(remembered.Values().value(geometryKey(*dialog)).toByteArray());
}

void CSettingsDialogUtils::RememberGeometry(const CVorlaneDialog* dialog) {
  if (!dialog->VDisInPreview()) return;
  SettingsFile::Change(geometryFile(), [dialog](QSettings& remembered) {
    remembered.setValue(geometryKey(*dialog), dialog->saveGeometry());
  });
}

void CSettingsDialogUtils::RunActionListDialog(CVorlaneDialog* dialog, QMap<QString, QVariant>* settings) {
  if (runSaveDialog<CSaveAsActionlistDialog>(new CSaveAsActionlistDialog(dialog), settings)) dialog->reject();
}

void CSettingsDialogUtils::RunFavoritesDialog(CVorlaneDialog* dialog, QMap<QString, QVariant>* settings) {
  QIcon favorite;
  favorite.addPixmap(dialog->windowIcon().pixmap(kFavoriteIconSize, QIcon::Selected, QIcon::Off), QIcon::Normal,
                     QIcon::Off);
  auto* const favorites = new CSaveAsCollectionDialog(dialog);
  favorites->SetCollectionIcon(favorite);
  // Not by an override of reject(), unlike after an action list.
  if (runSaveDialog<CSaveAsCollectionDialog>(favorites, settings)) dialog->QDialog::reject();
}

QIcon CSettingsDialogUtils::ActionIcon(const QString& fileNames) {
  InitKitResources();
  const auto image = [&fileNames](int section) {
    return QPixmap(QString(":/Vorlane/Resources/Tools/") + fileNames.section(QLatin1Char('#'), section, section));
  };
  QIcon icon;
  icon.addPixmap(image(1), QIcon::Selected, QIcon::Off);
  icon.addPixmap(image(1), QIcon::Active, QIcon::Off);
  icon.addPixmap(image(2), QIcon::Disabled, QIcon::Off);
  icon.addPixmap(image(0), QIcon::Normal, QIcon::Off);
  return icon;
}
