// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QStringList>

class QLineEdit;

// Asks for the password of encrypted files.
class PasswordDialog : public QDialog {
  Q_OBJECT

 public:
  // `files` need a password. Returns what was entered; empty when the user gave up.
  static QString Ask(QWidget* parent, const QStringList& files);

 private:
  PasswordDialog(QWidget* parent, const QStringList& files);

  QLineEdit* password_;
};
