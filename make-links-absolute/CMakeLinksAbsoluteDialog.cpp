// SPDX-License-Identifier: Apache-2.0
#include "make-links-absolute/CMakeLinksAbsoluteDialog.h"

#include "dialogs/CSettingsDialogUtils.h"

CMakeLinksAbsoluteDialog::CMakeLinksAbsoluteDialog(QWidget* parent) : CVorlaneDialog(parent, true) {
  ui.setupUi(this);
  CSettingsDialogUtils::Complete(this, ui.main_widget);
}

CMakeLinksAbsoluteDialog::~CMakeLinksAbsoluteDialog() {
  CSettingsDialogUtils::RememberGeometry(this);
}

void CMakeLinksAbsoluteDialog::SetPrefs(QMap<QString, QVariant>* settings) {
  ui.baseEdit->setText(settings->value(QStringLiteral("base")).toString());
  ui.removeBox->setChecked(settings->value(QStringLiteral("removeBase")).toBool());
}

bool CMakeLinksAbsoluteDialog::GetPrefs(QMap<QString, QVariant>* settings) {
  settings->insert(QStringLiteral("base"), ui.baseEdit->text());
  settings->insert(QStringLiteral("removeBase"), ui.removeBox->isChecked());
  settings->insert(QStringLiteral("ActionName"), QStringLiteral("Make Links Absolute"));
  return true;
}

void CMakeLinksAbsoluteDialog::on_VDShowSaveDialog() {
  CSettingsDialogUtils::AddToActionList(this);
}

void CMakeLinksAbsoluteDialog::on_VDShowSaveCollectionDialog() {
  CSettingsDialogUtils::AddToFavorites(this);
}
