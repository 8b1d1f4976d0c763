// SPDX-License-Identifier: Apache-2.0
#include "plugin/CSetBaseURL.h"

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CPrefsDialog.h"
#include "plugin/ShowSettingsDialog.h"
#include "plugin/WorkProcInfoStruct.h"

int CSetBaseURL::WorkProc(WorkProcInfoStruct* info) {
  const QString url = info->settings->value(QString("baseUrlString")).toString();
  info->document->SetBaseURL(url.toStdWString());
  return 0;
}

int CSetBaseURL::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  return ShowSettingsDialog<CPrefsDialog>(*this, parent, info, [](auto& document, auto& settings) {
    settings.insert(QString("baseUrlString"), QString::fromStdWString(document.GetBaseURL()));
  });
}

int CSetBaseURL::PreSequenceProc(WorkProcInfoStruct*) {
  return 1;
}

int CSetBaseURL::PostSequenceProc(WorkProcInfoStruct*) {
  return 1;
}

QString CSetBaseURL::GetActionName() {
  return QString("Set Base URL");
}

QString CSetBaseURL::GetDisplayName() {
  return QString("Set Base URL");
}

QString CSetBaseURL::GetActionHelp() {
  return QString("Action_SetBaseUrl.html");
}

QString CSetBaseURL::GetGroupName() {
  return QString("Document Properties");
}

int CSetBaseURL::GetActionFlags() {
  return 15;
}

QString CSetBaseURL::GetDefaultIcon() {
  return QString("Action_SetBaseURL.png#Action_SetBaseURL_Selected.png#Action_SetBaseURL_Disabled.png");
}
