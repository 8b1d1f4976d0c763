// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CSaveAsCollectionDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QPixmap>

#include "dialogs/BlankText.h"
#include "utils/CActionHistoryAPI.h"
#include "utils/SettingsFile.h"

namespace {

constexpr int kMinimumHeight = 236;
constexpr QSize kIconSize(128, 128);

}  // namespace

CSaveAsCollectionDialog::CSaveAsCollectionDialog(QWidget* parent, Qt::WindowFlags) : CVorlaneDialog(parent, false) {
  ui.setupUi(this);
  VDtitleLabel->setText(windowTitle());
  // The widths in the form add up to more than the row has. The spacer gives way, so that the buttons keep their texts.
  ui.horizontalSpacer->changeSize(0, 20, QSizePolicy::Expanding, QSizePolicy::Minimum);
  VDaddMainWidget(ui.main_widget, true);
  if (height() < kMinimumHeight) setFixedHeight(kMinimumHeight);
  ui.collectionNameLineEdit->setFocus();
}

CSaveAsCollectionDialog::~CSaveAsCollectionDialog() = default;

void CSaveAsCollectionDialog::LoadPrefsData(QMap<QString, QVariant>* prefs) {
  settings = prefs;
}

void CSaveAsCollectionDialog::SetCollectionIcon(const QIcon& icon) {
  ui.icon_toolButton->setIcon(icon);
}

void CSaveAsCollectionDialog::on_UpdateUI() {
  ui.saveButton->setDisabled(isBlank(ui.collectionNameLineEdit->text()));
}

void CSaveAsCollectionDialog::on_Save() {
  if (!ui.saveButton->isEnabled() || !settings) return;
  settings->insert(QString("CollectionName"), ui.collectionNameLineEdit->text());
  // Opens the settings history for the host. It is deliberately neither used here nor freed.
  // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): reported where the last reference ends.
  new CActionHistoryAPI(parent() ? parent()->objectName() : QString());
  accept();
  // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
}

void CSaveAsCollectionDialog::on_CollectionIcon() {
  const QString file = QFileDialog::getOpenFileName(this, tr("Nolva Reader Advanced Tools"), QString(),
                                                    tr("Image files (*.bmp;*.jpg;*.gif;*.png;*.tif;*.wmf;*.emf)"));
  if (file.isEmpty()) return;
  ui.icon_toolButton->setIcon(QIcon(QPixmap(file).scaled(kIconSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
}

void CSaveAsCollectionDialog::on_SaveToFile() {
  const QString file = QFileDialog::getSaveFileName(this, tr("Save Tool settings to file"), QDir::homePath(),
                                                    tr("Tool Settings Files (*.tsf)"));
  if (!settings) return;
  const QMap<QString, QVariant> values = *settings;  // the map may be gone after reject()
  reject();
  if (file.isEmpty()) return;
  SettingsFile::Change(file, [&values](QSettings& tool) { tool.setValue(QString("ToolSettings"), values); });
}
