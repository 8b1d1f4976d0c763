// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>
#include <QSet>
#include <QStringList>

class QLabel;
class QPushButton;

// A strip with what went wrong, which stays until the user closes it or adds something else.
class NoticeBar : public QFrame {
  Q_OBJECT

 public:
  explicit NoticeBar(QWidget* parent = nullptr);

  // Adds a message; the first one is shown, and how many more there are.
  void Add(const QString& message);
  void Clear();
  const QStringList& Messages() const { return messages_; }

 private:
  void ShowAll();

  QStringList messages_;
  QSet<QString> known_;
  int leftOut_ = 0;
  QLabel* icon_;
  QLabel* text_;
  QPushButton* all_;
};
