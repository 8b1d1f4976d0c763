// SPDX-License-Identifier: Apache-2.0
#include "plugin/CPrefsDialog.h"

#include "dialogs/CSettingsDialogUtils.h"

CPrefsDialog::CPrefsDialog(QWidget* parent, Qt::WindowFlags) : CVorlaneDialog(parent, true) {
  ui.setupUi(this);
  CSettingsDialogUtils::Complete(this, ui.main_widget);
  connect(ui.lineEdit, SIGNAL(returnPressed()), ui.okButton, SIGNAL(clicked()));
}

CPrefsDialog::~CPrefsDialog() {
  CSettingsDialogUtils::RememberGeometry(this);
}

void CPrefsDialog::SetPrefs(QMap<QString, QVariant>* settings) {
  if (settings) ui.lineEdit->setText(settings->value(QString("baseUrlString")).toString());
}

bool CPrefsDialog::GetPrefs(QMap<QString, QVariant>* settings) {
  if (!settings) return false;
  settings->insert(QString("baseUrlString"), ui.lineEdit->text());
  settings->insert(QString("ActionName"), QString("Set Base URL"));
  return true;
}

void CPrefsDialog::on_VDShowSaveDialog() {
  CSettingsDialogUtils::AddToActionList(this);
}

void CPrefsDialog::on_VDShowSaveCollectionDialog() {
  CSettingsDialogUtils::AddToFavorites(this);
}
