// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QIcon>
#include <QMap>
#include <QString>
#include <QVariant>
#include <QVector>

// An action's settings under a name and an icon, as a file of the collections folder.
struct Favorite {
  QString file;
  QString name;
  QIcon icon;
  QString actionName;
  QMap<QString, QVariant> settings;
};

// The favorites of the collections folder. Functions that change it return an empty text, or for the user why nothing
// was changed.
class Favorites {
  Q_DECLARE_TR_FUNCTIONS(Favorites)

 public:
  Favorites() = delete;

  // By name. Files without settings, and settings that do not name their action, are left out.
  static QVector<Favorite> All();
  // Why it cannot be a favorite's name; empty when it can.
  static QString NameProblem(const QString& name);
  static bool Exists(const QString& name);
  // Writes `favorite` under its name, in place of one of that name. Its file is not looked at.
  static QString Save(const Favorite& favorite);
  static QString Rename(const Favorite& favorite, const QString& name);
  static QString Remove(const Favorite& favorite);
};
