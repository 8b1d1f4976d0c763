// SPDX-License-Identifier: Apache-2.0
#include "make-links-absolute/CMakeLinksAbsoluteDialog.h"

#include <QAbstractButton>

#include "dialogs/CSettingsDialogUtils.h"

CMakeLinksAbsoluteDialog::CMakeLinksAbsoluteDialog(QWidget* parent) : CVorlaneDialog(parent, true) {
  ui.setupUi(this);
  // The button box adds icons, which the other settings dialogs do not have.
  for (QAbstractButton* const button : ui.buttonBox->buttons()) {
    button->setIcon(QIcon());
    button->setMinimumWidth(75);
  }
  CSettingsDialogUtils::Complete(this, ui.main_widget);
}

CMakeLinksAbsoluteDialog::~CMakeLinksAbsoluteDialog() {
  CSettingsDialogUtils::RememberGeometry(this);
}

void CMakeLinksAbsoluteDialog::SetPrefs(QMap<QString, QVariant>* settings) {
  ui.baseEdit->setText(settings->value(QString("base")).toString());
  ui.removeBox->setChecked(settings->value(QString("removeBase")).toBool());
}

bool CMakeLinksAbsoluteDialog::GetPrefs(QMap<QString, QVariant>* settings) {
  settings->insert(QString("base"), ui.baseEdit->text());
  settings->insert(QString("removeBase"), ui.removeBox->isChecked());
  settings->insert(QString("ActionName"), QString("Make Links Absolute"));
  return true;
}

void CMakeLinksAbsoluteDialog::on_VDShowSaveDialog() {
  CSettingsDialogUtils::AddToActionList(this);
}

void CMakeLinksAbsoluteDialog::on_VDShowSaveCollectionDialog() {
  CSettingsDialogUtils::AddToFavorites(this);
}
