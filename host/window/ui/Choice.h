// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QIcon>
#include <QString>

#include "host/window/core/ActionChoice.h"

class ActionCatalog;

// What the user chose to do, with what is shown of it.
struct Choice {
  ActionChoice action;
  QString title;
  QString details;  // its settings, a line each
  QIcon icon;
  QString favorite;  // the name of the favorite that it is, or was before it was edited

  bool IsSet() const { return action.kind != ActionChoice::Kind::kNone; }
  bool IsEditable() const { return action.kind == ActionChoice::Kind::kAction; }
  bool IsList() const { return action.kind == ActionChoice::Kind::kList; }
};

// Makes choices. Functions that can fail return an unset choice and put the reason, for the user, into `*problem`.
class Choices {
  Q_DECLARE_TR_FUNCTIONS(Choices)

 public:
  Choices() = delete;

  // Without a title the action's own name is shown, without an icon its own icon.
  static Choice OfAction(ActionCatalog& catalog, const QString& actionName, const QMap<QString, QVariant>& settings,
                         QString* problem, const QString& title = QString(), const QIcon& icon = QIcon());
  // An action list (".xqq") or a settings file (".tsf", JSON).
  static Choice OfFile(ActionCatalog& catalog, const QString& file, QString* problem);
  static bool IsListFile(const QString& file);
  static bool IsSettingsFile(const QString& file);
  static QIcon ListIcon();
  static QIcon SettingsFileIcon();
};
