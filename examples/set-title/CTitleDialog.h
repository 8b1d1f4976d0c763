// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QVariant>

#include "dialogs/CVorlaneDialog.h"
#include "ui_SetTitleDialog.h"

// Edits the setting "titleString".
class CTitleDialog : public CVorlaneDialog {
  Q_OBJECT

 public:
  explicit CTitleDialog(QWidget* parent);
  ~CTitleDialog() override;

  void SetPrefs(QMap<QString, QVariant>* settings);
  bool GetPrefs(QMap<QString, QVariant>* settings);

 public Q_SLOTS:
  void on_VDShowSaveDialog();
  void on_VDShowSaveCollectionDialog();

 private:
  Ui_SetTitleDialog ui;
};
