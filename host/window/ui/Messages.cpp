// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/Messages.h"

#include <QMessageBox>
#include <QPushButton>

bool Messages::Confirm(QWidget* parent, const QString& question, const QString& explanation, const QString& button) {
  QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Cancel, parent);
  box.setObjectName(QStringLiteral("confirm"));
  box.setWindowTitle(parent->window()->windowTitle());
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(explanation);
  QPushButton* const yes = box.addButton(button, QMessageBox::AcceptRole);
  yes->setObjectName(QStringLiteral("yes"));
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  return box.clickedButton() == yes;
}

void Messages::Warn(QWidget* parent, const QString& message) {
  QMessageBox box(QMessageBox::Warning, QString(), message, QMessageBox::Ok, parent);
  box.setObjectName(QStringLiteral("warning"));
  box.setWindowTitle(parent->window()->windowTitle());
  box.setTextFormat(Qt::PlainText);
  box.exec();
}
