// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include "host/window/ui/Favorites.h"

class QLineEdit;
class QToolButton;
class SaveFooter;

// Asks for the name and the icon of a favorite.
class FavoriteDialog : public QDialog {
  Q_OBJECT

 public:
  // Saves the favorite and returns its name; empty when the user gave up, or was told why it cannot be saved. Asks for
  // the name and the icon if `ask`, or when the name is taken or cannot be one.
  static QString Save(QWidget* parent, Favorite favorite, bool ask = false);

 private:
  FavoriteDialog(QWidget* parent, const Favorite& favorite);
  void ChooseIcon();
  void Check();

  QIcon icon_;
  QToolButton* iconButton_;
  QLineEdit* name_;
  SaveFooter* footer_;
};
