// SPDX-License-Identifier: Apache-2.0
#include "host/command/ListsCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/files/HostFolders.h"
#include "utils/CUtils.h"

ListsCommand::ListsCommand()
    : Command(QStringLiteral("lists"), QStringLiteral("Shows the stored action lists: name, category and actions.")) {
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON array, with the actions' settings."));
}

int ListsCommand::Execute() {
  SetupHostFolders();
  QJsonArray array;
  QString text;
  bool allRead = true;
  for (const QString& file : ActionList::FilesIn(CUtils::GetSequenceFolder())) {
    try {
      const ActionList list = ActionList::Read(file);
      QJsonArray actions;
      QStringList names;
      for (const ActionList::Step& step : list.Steps()) {
        names += step.actionName;
        actions += QJsonObject{{QStringLiteral("action"), step.actionName},
                               {QStringLiteral("settings"), QJsonObject::fromVariantMap(step.settings)}};
      }
      array += QJsonObject{{QStringLiteral("name"), list.Name()},
                           {QStringLiteral("category"), list.Category()},
                           {QStringLiteral("file"), file},
                           {QStringLiteral("actions"), actions}};
      text += QStringLiteral("%1\t%2\t%3\n").arg(list.Name(), list.Category(), names.join(QStringLiteral(", ")));
    } catch (const CommandError& error) {
      Console::Error(error.Message());
      allRead = false;
    }
  }
  const bool printed = IsSet("json") ? Console::Print(QJsonDocument(array).toJson()) : Console::Print(text);
  if (!allRead) return kExitNotLoaded;
  return printed ? kExitDone : kExitSomeFailed;
}
