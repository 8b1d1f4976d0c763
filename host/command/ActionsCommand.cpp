// SPDX-License-Identifier: Apache-2.0
#include "host/command/ActionsCommand.h"

#include <optional>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/actions/ActionCatalog.h"
#include "host/actions/SettingsDescription.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/ExitCode.h"
#include "utils/KitResources.h"

namespace {

QStringList HelpPages(CActionInterface& action) {
  const QString page = action.GetActionHelp();
  return page.isEmpty() ? QStringList() : QStringList(QStringLiteral(":/Vorlane/Resources/HelpFiles/") + page);
}

QStringList Icons(CActionInterface& action) {
  QStringList icons = action.GetDefaultIcon().split(QLatin1Char('#'), Qt::SkipEmptyParts);
  for (QString& icon : icons) icon.prepend(QStringLiteral(":/Vorlane/Resources/Tools/"));
  return icons;
}

// A description that does not follow the schema is an error of this action alone.
std::optional<SettingsDescription> DescriptionOf(CActionInterface& action) {
  try {
    return SettingsDescription::Of(action.GetActionName());
  } catch (const CommandError& error) {
    Console::Error(error.Message());
    return std::nullopt;
  }
}

}  // namespace

ActionsCommand::ActionsCommand()
    : Command(QStringLiteral("actions"),
              QStringLiteral("Lists the actions: name, group, flags, help page, command and settings.")) {
  AddToolsOption();
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON array."));
  AddExample(QStringLiteral("actions"));
  AddExample(QStringLiteral("actions --json --tools-dir ~/my-actions"));
}

int ActionsCommand::Execute() {
  InitKitResources();  // an action may use the images of the kit
  ActionCatalog catalog(ToolsFolders());
  QJsonArray array;
  QString text;
  for (const ActionCatalog::Entry& entry : catalog.All()) {
    CActionInterface& action = *entry.action;
    const std::optional<SettingsDescription> description = DescriptionOf(action);
    QJsonObject object{{QStringLiteral("name"), action.GetActionName()},
                       {QStringLiteral("displayName"), action.GetDisplayName()},
                       {QStringLiteral("group"), action.GetGroupName()},
                       {QStringLiteral("flags"), action.GetActionFlags()},
                       {QStringLiteral("help"), action.GetActionHelp()},
                       {QStringLiteral("file"), entry.file},
                       {QStringLiteral("helpPage"), HelpPages(action).value(0)},
                       {QStringLiteral("icons"), QJsonArray::fromStringList(Icons(action))}};
    if (description) object.insert(QStringLiteral("description"), description->Json());
    array += object;
    text += QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                .arg(action.GetActionName(), action.GetGroupName(), QString::number(action.GetActionFlags()),
                     action.GetActionHelp(), description ? description->CommandName() : QString(),
                     description ? description->Keys().join(QLatin1Char(' ')) : QString());
    for (const QString& path : HelpPages(action) + Icons(action)) {
      if (QFile::exists(path)) continue;
      Console::Error(QStringLiteral("%1: %2 is not in the plug-in's resources.").arg(action.GetActionName(), path));
    }
  }
  for (const QString& warning : catalog.Warnings()) Console::Error(QStringLiteral("Warning: ") + warning);
  for (const QString& problem : catalog.Problems()) Console::Error(problem);
  if (array.isEmpty() && catalog.Problems().isEmpty()) {
    Console::Error(QStringLiteral("No plug-in is in %1.").arg(catalog.FolderNames()));
  }
  const bool printed = IsSet("json") ? Console::Print(QJsonDocument(array).toJson()) : Console::Print(text);
  if (array.isEmpty() || !catalog.Problems().isEmpty()) return kExitNotLoaded;
  return printed ? kExitDone : kExitSomeFailed;
}
