// SPDX-License-Identifier: Apache-2.0
#include "CSetTitle.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

#include "dialogs/CVorlaneDialog.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/DialogLoadStruct.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

const QString kTitleKey = QStringLiteral("titleString");
const QString kActionNameKey = QStringLiteral("ActionName");
constexpr int kTitleInformation = 2;

}  // namespace

int CSetTitle::WorkProc(WorkProcInfoStruct* info) {
  const QString title = info->settings->value(kTitleKey).toString();
  info->document->SetInformation(kTitleInformation, title.toStdWString());
  return 0;
}

// The kit's dialog shell around a form of one's own.
int CSetTitle::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  CVorlaneDialog dialog(parent, true);
  auto* const form = new QWidget;
  form->setObjectName(QStringLiteral("main_widget"));
  form->resize(400, 110);
  auto* const layout = new QFormLayout(form);
  auto* const title = new QLineEdit(info->settings->value(kTitleKey).toString());
  auto* const ok = new QPushButton(tr("OK"));
  layout->addRow(tr("Title:"), title);
  layout->addRow(ok);
  QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
  dialog.VDaddMainWidget(form, true);
  dialog.VDaddCloseButton();
  if (dialog.exec() != QDialog::Accepted) return 0;
  info->settings->insert(kTitleKey, title->text());
  info->settings->insert(kActionNameKey, GetActionName());
  return 1;
}
