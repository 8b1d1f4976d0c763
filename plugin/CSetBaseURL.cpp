// SPDX-License-Identifier: Apache-2.0
#include "plugin/CSetBaseURL.h"

#include <QIcon>
#include <QPixmap>
#include <QPointer>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CPrefsDialog.h"
#include "plugin/DialogLoadStruct.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

QIcon actionIcon(const QString& fileNames) {
  const auto image = [&fileNames](int section) {
    return QPixmap(QStringLiteral(":/Vorlane/Resources/Tools/") +
                   fileNames.section(QLatin1Char('#'), section, section));
  };
  QIcon icon;
  icon.addPixmap(image(1), QIcon::Selected, QIcon::Off);
  icon.addPixmap(image(1), QIcon::Active, QIcon::Off);
  icon.addPixmap(image(2), QIcon::Disabled, QIcon::Off);
  icon.addPixmap(image(0), QIcon::Normal, QIcon::Off);
  return icon;
}

}  // namespace

int CSetBaseURL::WorkProc(WorkProcInfoStruct* info) {
  const QString url = info->settings->value(QStringLiteral("baseUrlString")).toString();
  info->document->SetBaseURL(url.toStdWString());
  return 0;
}

int CSetBaseURL::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  if (!info || !info->settings) return 0;
  QMap<QString, QVariant>* settings = info->settings;
  if (info->document && !info->skipDocumentValue) {
    settings->insert(QStringLiteral("baseUrlString"), QString::fromStdWString(info->document->GetBaseURL()));
  }

  // A host may destroy the parent, and so the dialog, while it runs.
  const QPointer<CPrefsDialog> dialog = new CPrefsDialog(parent);
  dialog->setWindowFlags(dialog->windowFlags() & ~Qt::WindowContextHelpButtonHint);
  dialog->setWindowIcon(actionIcon(GetDefaultIcon()));
  if (info->hideAddToActionList) dialog->VDhideAddToActionListButton();
  if (!settings->isEmpty()) dialog->SetPrefs(settings);
  const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
  if (accepted) dialog->GetPrefs(settings);
  delete dialog;
  return accepted ? 1 : 0;
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
