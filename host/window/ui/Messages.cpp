// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/Messages.h"

#include <QMessageBox>
#include <QPushButton>

bool Messages::Confirm(QWidget* parent, const QString& question, const QString& explanation, const QString& button) {
  QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Cancel, parent);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(explanation);
  const QAbstractButton* const yes = box.addButton(button, QMessageBox::AcceptRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  return box.clickedButton() == yes;
}

void Messages::Warn(QWidget* parent, const QString& message) {
  QMessageBox box(QMessageBox::Warning, QString(), message, QMessageBox::Ok, parent);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}
