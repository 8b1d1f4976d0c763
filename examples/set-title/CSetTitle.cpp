// SPDX-License-Identifier: Apache-2.0
#include "CSetTitle.h"

#include "CTitleDialog.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryInformationKeys.h"
#include "plugin/ShowSettingsDialog.h"
#include "plugin/WorkProcInfoStruct.h"

int CSetTitle::WorkProc(WorkProcInfoStruct* info) {
  const QString title = info->settings->value("titleString").toString();
  info->document->SetInformation(kInformationTitle, title.toStdWString());
  return 0;
}

int CSetTitle::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  return ShowSettingsDialog<CTitleDialog>(*this, parent, info, [](auto& document, auto& settings) {
    settings.insert("titleString", QString::fromStdWString(document.GetInformation(kInformationTitle)));
  });
}
