// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/SaveFooter.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

SaveFooter::SaveFooter(QDialog& dialog) : QWidget(&dialog) {
  message_ = new QLabel;
  message_->setObjectName(QStringLiteral("saveMessage"));
  message_->setWordWrap(true);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
  save_ = buttons->button(QDialogButtonBox::Save);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(message_);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &SaveFooter::saveWanted);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
}

void SaveFooter::Update(const QString& message, bool maySave) {
  message_->setText(message);
  save_->setEnabled(maySave);
}
