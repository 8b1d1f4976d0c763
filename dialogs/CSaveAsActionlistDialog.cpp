// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CSaveAsActionlistDialog.h"

#include <QKeyEvent>

#include "dialogs/BlankText.h"
#include "utils/CActionUtils.h"

CSaveAsActionlistDialog::CSaveAsActionlistDialog(QWidget* parent, Qt::WindowFlags) : CVorlaneDialog(parent, false) {
  ui.setupUi(this);
  VDtitleLabel->setText(windowTitle());
  VDaddMainWidget(ui.main_widget, true);
  ui.categoryComboBox->clear();
  ui.categoryComboBox->addItems(CActionUtils::GetActionListCategories());
  ui.actionListNameLineEdit->setFocus();
  connect(ui.actionListNameLineEdit, SIGNAL(returnPressed()), ui.saveButton, SIGNAL(clicked()));
}

CSaveAsActionlistDialog::~CSaveAsActionlistDialog() = default;

void CSaveAsActionlistDialog::LoadPrefsData(QMap<QString, QVariant>* prefs) {
  settings = prefs;
}

void CSaveAsActionlistDialog::on_UpdateUI() {
  ui.saveButton->setDisabled(isBlank(ui.actionListNameLineEdit->text()));
}

void CSaveAsActionlistDialog::on_Save() {
  if (!ui.saveButton->isEnabled() || !settings) return;
  const QString name = ui.actionListNameLineEdit->text();
  settings->insert(QString("ActionListName"), name);
  settings->insert(QString("ActionListCategory"), ui.categoryComboBox->currentText());
  settings->insert(QString("ActionListOverwrite"), ui.newActionListRadioButton->isChecked());
  CActionUtils::SaveAsCustomActionList(settings);
  if (ui.addToActionListRadioButton->isChecked()) emit actionListChanged(name);
  accept();
}

void CSaveAsActionlistDialog::keyPressEvent(QKeyEvent* event) {
  // Return in the name field saves through the Save button before it arrives here. A second save would append the
  // action twice, or overwrite the list with a map that no longer has the action's name.
  const bool saved = result() == QDialog::Accepted;
  if (!saved && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) on_Save();
  QDialog::keyPressEvent(event);
}
