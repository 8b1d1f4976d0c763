// SPDX-License-Identifier: Apache-2.0
#include "host/command/ListsCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/files/HostFolders.h"

ListsCommand::ListsCommand()
    : Command(QStringLiteral("lists"), QStringLiteral("Shows the stored action lists: name, category and actions.")) {
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON array, with the actions' settings."));
}

int ListsCommand::Execute() {
  SetupHostFolders();
  QJsonArray array;
  QString text;
  bool allRead = true;
  for (const QString& file : ActionListFile::All()) {
    try {
      QStringList warnings;
      const ActionListFile list = ActionList::Read(file, &warnings);
      for (const QString& warning : warnings) Console::Error(warning);
      QJsonArray actions;
      QStringList names;
      for (const ActionListFile::Entry& entry : list.entries) {
        names += entry.actionName;
        actions += QJsonObject{{QStringLiteral("action"), entry.actionName},
                               {QStringLiteral("settings"), QJsonObject::fromVariantMap(entry.settings)}};
      }
      array += QJsonObject{{QStringLiteral("name"), list.name},
                           {QStringLiteral("category"), list.category},
                           {QStringLiteral("file"), file},
                           {QStringLiteral("actions"), actions}};
      text += QStringLiteral("%1\t%2\t%3\n").arg(list.name, list.category, names.join(QStringLiteral(", ")));
    } catch (const CommandError& error) {
      Console::Error(error.Message());
      allRead = false;
    }
  }
  const bool printed = IsSet("json") ? Console::Print(QJsonDocument(array).toJson()) : Console::Print(text);
  if (!allRead) return kExitNotLoaded;
  return printed ? kExitDone : kExitSomeFailed;
}
