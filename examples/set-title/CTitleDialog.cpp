// SPDX-License-Identifier: Apache-2.0
#include "CTitleDialog.h"

#include "dialogs/CSettingsDialogUtils.h"

CTitleDialog::CTitleDialog(QWidget* parent) : CVorlaneDialog(parent, true) {
  ui.setupUi(this);
  CSettingsDialogUtils::Complete(this, ui.main_widget);
}

CTitleDialog::~CTitleDialog() {
  CSettingsDialogUtils::RememberGeometry(this);
}

void CTitleDialog::SetPrefs(QMap<QString, QVariant>* settings) {
  ui.titleEdit->setText(settings->value("titleString").toString());
}

bool CTitleDialog::GetPrefs(QMap<QString, QVariant>* settings) {
  settings->insert("titleString", ui.titleEdit->text());
  settings->insert("ActionName", "Set Document Title");
  return true;
}

void CTitleDialog::on_VDShowSaveDialog() {
  CSettingsDialogUtils::AddToActionList(this);
}

void CTitleDialog::on_VDShowSaveCollectionDialog() {
  CSettingsDialogUtils::AddToFavorites(this);
}
