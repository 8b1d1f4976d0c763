// SPDX-License-Identifier: Apache-2.0
#include "plugin/CPrefsDialog.h"

#include <QPointer>
#include <QSettings>

#include "dialogs/CSaveAsActionlistDialog.h"
#include "dialogs/CSaveAsCollectionDialog.h"
#include "utils/CUtils.h"

namespace {

constexpr QSize kFavoriteIconSize(128, 128);

QString geometryFile() {
  return CUtils::GetSettingsFolder() + QStringLiteral("/VorlaneViewerSettings.vsf");
}

QString geometryKey(const QObject& dialog) {
  return dialog.objectName() + QStringLiteral("geometry");
}

}  // namespace

CPrefsDialog::CPrefsDialog(QWidget* parent, Qt::WindowFlags) : CVorlaneDialog(parent, true) {
  ui.setupUi(this);
  VDtitleLabel->setText(windowTitle());
  VDaddMainWidget(ui.main_widget, true);
  VDaddTopButtons();
  VDaddCloseButton();
  if (VDisInPreview()) {
    QSettings remembered(geometryFile(), QSettings::IniFormat);
    restoreGeometry(remembered.value(geometryKey(*this)).toByteArray());
  }
  connect(ui.lineEdit, SIGNAL(returnPressed()), ui.okButton, SIGNAL(clicked()));
}

CPrefsDialog::~CPrefsDialog() {
  if (!VDisInPreview()) return;
  QSettings remembered(geometryFile(), QSettings::IniFormat);
  remembered.setValue(geometryKey(*this), saveGeometry());
}

void CPrefsDialog::SetPrefs(QMap<QString, QVariant>* settings) {
  if (settings) ui.lineEdit->setText(settings->value(QStringLiteral("baseUrlString")).toString());
}

bool CPrefsDialog::GetPrefs(QMap<QString, QVariant>* settings) {
  if (!settings) return false;
  settings->insert(QStringLiteral("baseUrlString"), ui.lineEdit->text());
  settings->insert(QStringLiteral("ActionName"), QStringLiteral("Set Base URL"));
  return true;
}

void CPrefsDialog::on_VDShowSaveDialog() {
  QMap<QString, QVariant> settings;
  GetPrefs(&settings);
  const QPointer<CSaveAsActionlistDialog> dialog = new CSaveAsActionlistDialog(this);
  dialog->setWindowFlags(dialog->windowFlags() & ~Qt::WindowContextHelpButtonHint);
  dialog->LoadPrefsData(&settings);
  dialog->exec();
  if (!dialog) return;  // destroyed together with this dialog
  delete dialog;
  reject();
}

void CPrefsDialog::on_VDShowSaveCollectionDialog() {
  QMap<QString, QVariant> settings;
  GetPrefs(&settings);
  const QPointer<CSaveAsCollectionDialog> dialog = new CSaveAsCollectionDialog(this);
  dialog->setWindowFlags(dialog->windowFlags() & ~Qt::WindowContextHelpButtonHint);
  dialog->LoadPrefsData(&settings);
  QIcon favorite;
  favorite.addPixmap(windowIcon().pixmap(kFavoriteIconSize, QIcon::Selected, QIcon::Off), QIcon::Normal, QIcon::Off);
  dialog->SetCollectionIcon(favorite);
  dialog->exec();
  if (!dialog) return;  // destroyed together with this dialog
  delete dialog;
  QDialog::reject();
}
