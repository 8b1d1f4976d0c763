// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QPointer>

#include "dialogs/CSettingsDialogUtils.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"

/// An action's whole ShowDialogProc, by a settings dialog as CSettingsDialogUtils describes one, constructible from its
/// parent widget.
///
/// `readDocument(document, settings)` puts what the open document holds into the settings map; it is called unless
/// there is no document or the host wants the stored settings shown. The dialog then edits the map in place, which
/// changes only when the user accepts. Returns 1 for that and 0 for everything else; without a map nothing is shown.
template <class SettingsDialog, class ReadDocument>
int ShowSettingsDialog(CActionInterface& action, QWidget* parent, DialogLoadStruct* info, ReadDocument readDocument) {
  if (!info || !info->settings) return 0;
  QMap<QString, QVariant>* const settings = info->settings;
  if (info->document && !info->skipDocumentValue) readDocument(*info->document, *settings);

  // A host may destroy the parent, and so the dialog, while it runs.
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
