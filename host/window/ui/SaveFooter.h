// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

class QDialog;
class QLabel;
class QPushButton;

// The lower end of a dialog that saves something: Save and Cancel, and above them why it cannot be saved.
class SaveFooter : public QWidget {
  Q_OBJECT

 public:
  // Cancel rejects the dialog.
  explicit SaveFooter(QDialog& dialog);
  // Shows the message, if there is one.
  void Update(const QString& message, bool maySave);

 signals:
  void saveWanted();

 private:
  QLabel* message_;
  QPushButton* save_;
};
