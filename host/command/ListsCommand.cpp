// SPDX-License-Identifier: Apache-2.0
#include "host/command/ListsCommand.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Suggestion.h"
#include "host/files/HostFolders.h"

namespace {

int PrintPath(const QString& path) {
  return Console::Print(path + QLatin1Char('\n')) ? kExitDone : kExitSomeFailed;
}

[[noreturn]] void Refuse(const QString& message) {
  throw CommandError(kExitUsage, message);
}

bool IsBlank(const QString& text) {
  return text.trimmed().isEmpty();
}

// Where a new list of that name is written: a path is taken as it is.
QString PathOfNew(const QString& name) {
  const bool isPath = name.contains(QLatin1Char('/')) || name.endsWith(QLatin1String(".xqq"));
  if (!isPath) SetupHostFolders();
  return isPath ? name : ActionListFile::PathOf(name);
}

}  // namespace

ListsCommand::ListsCommand()
    : SettingsCommand(QStringLiteral("lists"), QStringLiteral("Shows the action lists, makes and removes them.")) {
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON array, with the actions' settings."));
  AddActionOption();
  AddSettingsOptions();
  AddUncheckedOption();
  AddOption(QStringLiteral("category"), QStringLiteral("With 'add': the category of a new list (default: Default)."),
            QStringLiteral("CATEGORY"));
  AddOption(QStringLiteral("force"), QStringLiteral("With 'add': replaces an existing list."));
  AddToolsOption();
  parser_.addPositionalArgument(QStringLiteral("add"),
                                QStringLiteral("add NAME: puts the action at the end of the list, which is made if it "
                                               "is not there.\nremove NAME [INDEX]: removes the list, or its action "
                                               "with that number, from 0."),
                                QStringLiteral("[add NAME | remove NAME [INDEX]]"));
  AddExample(
      QStringLiteral("lists add \"My List\" --action \"Set Base URL\" --set baseUrlString=https://example.org/"));
  AddExample(QStringLiteral("lists remove \"My List\" 0"));
}

void ListsCommand::Check() {
  const QStringList arguments = parser_.positionalArguments();
  const QString verb = arguments.value(0);
  const QStringList verbs{QStringLiteral("add"), QStringLiteral("remove")};
  verb_ = static_cast<Verb>(1 + verbs.indexOf(verb));
  if (!arguments.isEmpty() && verb_ == Verb::kShow) {
    Refuse(QStringLiteral("Unexpected argument '%1'.%2").arg(verb, Suggestion(verb, verbs)));
  }
  if (verb_ != Verb::kShow && IsBlank(arguments.value(1)))
    Refuse(QStringLiteral("'lists %1' needs a list's name.").arg(verb));
  const int most = verb_ == Verb::kShow ? 0 : verb_ == Verb::kAdd ? 2 : 3;
  if (arguments.size() > most) {
    Refuse(QStringLiteral("Unexpected argument '%1'; a name with spaces is quoted.").arg(arguments.at(most)));
  }
  for (const char* option : {"action", "set", "clear", "settings", "unchecked", "category", "force", "tools-dir"}) {
    if (verb_ == Verb::kAdd || !IsSet(option)) continue;
    Refuse(QStringLiteral("Option '--%1' is for 'lists add'.").arg(QLatin1String(option)));
  }
  if (IsSet("category") && IsBlank(Value("category"))) Refuse(QStringLiteral("Option '--category' needs a name."));
  if (verb_ != Verb::kShow && IsSet("json")) Refuse(QStringLiteral("Option '--json' is for showing lists."));
  if (verb_ == Verb::kAdd && !IsSet("action") && !IsSet("settings")) {
    Refuse(QStringLiteral("'lists add' needs '--action'."));
  }
  CheckSettingsOptions();
  if (arguments.size() < 3) return;
  bool valid = false;
  index_ = arguments.at(2).toInt(&valid);
  if (!valid || index_ < 0) Refuse(QStringLiteral("'%1' is not the number of an action, from 0.").arg(arguments.at(2)));
}

int ListsCommand::Execute() {
  if (verb_ == Verb::kAdd) return Add();
  return verb_ == Verb::kRemove ? Remove() : Show();
}

int ListsCommand::Add() const {
  ActionCatalog catalog(ToolsFolders());
  QStringList warnings;
  const ConfiguredAction action = Configure(catalog, warnings);
  const ActionListFile::Entry entry{action.name, action.settings};
  const std::optional<QString> existing = ActionList::Find(ListName());
  const QString path = existing ? *existing : PathOfNew(ListName());
  const bool append = QFileInfo::exists(path) && !IsSet("force");
  if (append && IsSet("category")) {
    Refuse(QStringLiteral("The list '%1' exists and keeps its category; --force replaces it.").arg(path));
  }
  // Only an action list is replaced.
  if (QFileInfo::exists(path) && IsSet("force")) ActionList::Read(path);
  if (append) {
    ActionList::Read(path, &warnings);  // refuses what is not a list; names a gap, which the new action fills
    ActionList::Append(path, entry);
  } else {
    const bool isPath = path == ListName();
    ActionList::Create(path, isPath ? QFileInfo(path).completeBaseName() : ListName(),
                       IsSet("category") ? Value("category") : QStringLiteral("Default"), entry);
  }
  for (const QString& warning : warnings) Console::Error(warning);
  return PrintPath(path);
}

int ListsCommand::Remove() const {
  const QString path = ActionList::Locate(ListName());
  if (index_ < 0) {
    ActionList::RemoveFile(path);
    return PrintPath(path);
  }
  const auto count = static_cast<int>(ActionList::Read(path).entries.size());
  if (index_ >= count) Refuse(QStringLiteral("The action list '%1' has no action %2.").arg(path).arg(index_));
  if (count == 1) Refuse(QStringLiteral("It is the only action of '%1'; remove the whole list.").arg(path));
  ActionList::RemoveAction(path, index_);
  return PrintPath(path);
}

int ListsCommand::Show() const {
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
