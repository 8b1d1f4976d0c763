// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include "host/window/ui/Favorites.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

// Asks for the name and the icon of a favorite.
class FavoriteDialog : public QDialog {
  Q_OBJECT

 public:
  // Begins with the favorite's name and icon. False when the user gave up.
  static bool Ask(QWidget* parent, Favorite* favorite);

 private:
  FavoriteDialog(QWidget* parent, const Favorite& favorite);
  void ChooseIcon();
  void Check();

  QIcon icon_;
  QToolButton* iconButton_;
  QLineEdit* name_;
  QLabel* problem_;
  QPushButton* save_;
};
