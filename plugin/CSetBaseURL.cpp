// SPDX-License-Identifier: Apache-2.0
#include "plugin/CSetBaseURL.h"

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CPrefsDialog.h"
#include "plugin/ShowSettingsDialog.h"
#include "plugin/WorkProcInfoStruct.h"

int CSetBaseURL::WorkProc(WorkProcInfoStruct* info) {
  const QString url = info->settings->value(QStringLiteral("baseUrlString")).toString();
  info->document->SetBaseURL(url.toStdWString());
  return 0;
}

int CSetBaseURL::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  return ShowSettingsDialog<CPrefsDialog>(*this, parent, info, [](auto& document, auto& settings) {
    settings.insert(QStringLiteral("baseUrlString"), QString::fromStdWString(document.GetBaseURL()));
  });
}

int CSetBaseURL::PreSequenceProc(WorkProcInfoStruct*) {
  return 1;
}

int CSetBaseURL::PostSequenceProc(WorkProcInfoStruct*) {
  return 1;
}

QString CSetBaseURL::GetActionName() {
  return QStringLiteral("Set Base URL");
}

QString CSetBaseURL::GetDisplayName() {
  return QStringLiteral("Set Base URL");
}

QString CSetBaseURL::GetActionHelp() {
  return QStringLiteral("Action_SetBaseUrl.html");
}

QString CSetBaseURL::GetGroupName() {
  return QStringLiteral("Document Properties");
}

int CSetBaseURL::GetActionFlags() {
  return 15;
}

QString CSetBaseURL::GetDefaultIcon() {
  return QStringLiteral("Action_SetBaseURL.png#Action_SetBaseURL_Selected.png#Action_SetBaseURL_Disabled.png");
}
