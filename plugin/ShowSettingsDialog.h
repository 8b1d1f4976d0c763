// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QPointer>

#include "dialogs/CSettingsDialogUtils.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"

/// The whole ShowDialogProc of an action. `SettingsDialog` is a dialog as CSettingsDialogUtils describes one, with a
/// constructor that takes the parent widget.
///
/// `readDocument(document, settings)` puts what the open document holds into the settings map. It is not called without
/// a document, or when the host wants the stored settings shown. The dialog then edits the map, which changes only when
/// the user accepts. Returns 1 if the user accepted, else 0. Without a map nothing is shown.
template <class SettingsDialog, class ReadDocument>
int ShowSettingsDialog(CActionInterface& action, QWidget* parent, DialogLoadStruct* info, ReadDocument readDocument) {
  if (!info || !info->settings) return 0;
  QMap<QString, QVariant>* const settings = info->settings;
  if (info->document && !info->skipDocumentValue) readDocument(*info->document, *settings);

  // A host may destroy the parent while the dialog runs, and the dialog with it.
  const QPointer<SettingsDialog> dialog = new SettingsDialog(parent);
  dialog->setWindowFlags(dialog->windowFlags() & ~Qt::WindowContextHelpButtonHint);
  dialog->setWindowIcon(CSettingsDialogUtils::ActionIcon(action.GetDefaultIcon()));
  if (info->hideAddToActionList) dialog->VDhideAddToActionListButton();
  if (!settings->isEmpty()) dialog->SetPrefs(settings);
  const bool accepted = dialog->exec() == SettingsDialog::Accepted && dialog;
  if (accepted) dialog->GetPrefs(settings);
  delete dialog;
  return accepted ? 1 : 0;
}
