// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QVariant>

#include "dialogs/CVorlaneDialog.h"
#include "ui_MakeLinksAbsoluteDialog.h"

/// Edits the settings "base" and "removeBase"; a settings dialog as CSettingsDialogUtils describes one.
class CMakeLinksAbsoluteDialog : public CVorlaneDialog {
  Q_OBJECT

 public:
  explicit CMakeLinksAbsoluteDialog(QWidget* parent);
  ~CMakeLinksAbsoluteDialog() override;

  void SetPrefs(QMap<QString, QVariant>* settings);
  bool GetPrefs(QMap<QString, QVariant>* settings);

 public Q_SLOTS:
  void on_VDShowSaveDialog();
  void on_VDShowSaveCollectionDialog();

 private:
  Ui_MakeLinksAbsoluteDialog ui;
};
