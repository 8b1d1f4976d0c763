// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>

#include "host/window/ui/Choice.h"

class QLabel;
class QPushButton;
class QToolButton;

// Shows what was chosen, with buttons to edit it, to keep it as a favorite and for its help.
class ChoiceCard : public QFrame {
  Q_OBJECT

 public:
  explicit ChoiceCard(QWidget* parent = nullptr);
  void SetChoice(const Choice& choice);

 signals:
  void editWanted();
  void favoriteWanted();
  void helpWanted();

 private:
  QLabel* icon_;
  QLabel* title_;
  QLabel* details_;
  QPushButton* edit_;
  QToolButton* favorite_;
  QToolButton* help_;
};
