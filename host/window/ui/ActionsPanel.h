// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <QWidget>

#include "host/window/ui/Choice.h"
#include "host/window/ui/Favorites.h"

class ActionCatalog;
class QTreeWidget;
class QTreeWidgetItem;

// What can be done: the actions by group, the favorites, the action lists by category, opened files and what was done
// lately. What another program writes into their folders appears by itself.
class ActionsPanel : public QWidget {
  Q_OBJECT

 public:
  // What an entry is. Its value, which no other entry has, is the action's name, the file, or a recent entry as a text.
  enum class Kind { kHeading, kAction, kFavorite, kList, kFile, kRecent };

  // Keeps a reference to the catalog. Shows nothing before the first Refresh().
  explicit ActionsPanel(ActionCatalog& catalog, QWidget* parent = nullptr);

  void Refresh();
  void RefreshSoon() { refresh_.start(0); }
  // Moves the cursor to the action of that name, or to that file, because it was chosen.
  void MarkChosen(const QString& value);
  // Moves the cursor back to what was chosen last, after another entry came to nothing.
  void MarkChosenAgain() { MoveTo(chosen_); }
  // Moves the cursor to the file, which was not chosen but is new.
  void ShowFile(const QString& file);

 signals:
  // The action's settings are to be entered.
  void actionChosen(const QString& actionName);
  void choiceMade(const Choice& choice);
  void editWanted(const Choice& choice);
  void helpWanted(const QString& actionName);
  void problem(const QString& message);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  QTreeWidgetItem* AddHeading(const QString& text);
  void AddActions();
  void AddFavorites();
  void AddLists();
  void AddOpenedFiles();
  void AddRecent();
  void Watch();
  void MoveTo(const QString& value);
  void Choose(Kind kind, const QString& value);
  Choice ChoiceOf(Kind kind, const QString& value);
  Favorite FavoriteOf(const QString& file) const;
  void ShowMenu(const QPoint& position);
  void RenameFavorite(const Favorite& favorite);
  void RemoveFavorite(const Favorite& favorite);
  void RemoveList(const QString& file);

  ActionCatalog& catalog_;
  QTreeWidget* tree_;
  QString chosen_;  // the value of its entry
  QVector<Favorite> favorites_;
  QFileSystemWatcher watcher_;
  QTimer refresh_;
};
