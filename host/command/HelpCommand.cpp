// SPDX-License-Identifier: Apache-2.0
#include "host/command/HelpCommand.h"

#include <QFile>
#include <QLoggingCategory>

#include "host/actions/ActionCatalog.h"
#include "host/actions/SettingsDescription.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Suggestion.h"
#include "host/base/WindowSystem.h"

namespace {

QString PageOf(CActionInterface& action) {
  QFile file(QStringLiteral(":/Vorlane/Resources/HelpFiles/") + action.GetActionHelp());
  if (action.GetActionHelp().isEmpty() || !file.open(QIODevice::ReadOnly)) {
    return QStringLiteral("%1\n\nThe action has no help page.").arg(action.GetDisplayName());
  }
  return WindowSystem::Get().PlainText(QString::fromUtf8(file.readAll())).trimmed();
}

}  // namespace

HelpCommand::HelpCommand(std::function<QString(const QString&)> helpOf, const QStringList& commands)
    : Command(QStringLiteral("help"),
              QStringLiteral("Shows the help of a command, or of an action with its settings.")),
      helpOf_(std::move(helpOf)),
      commands_(commands) {
  AddToolsOption();
  parser_.addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("A command, or an action's name."),
                                QStringLiteral("[NAME]"));
  AddExample(QStringLiteral("help run"));
  AddExample(QStringLiteral("help \"Set Base URL\""));
}

bool HelpCommand::NeedsWindowSystem() const {
  const QString name = parser_.positionalArguments().value(0);
  return !name.isEmpty() && name != Name() && !commands_.contains(name);
}

void HelpCommand::PrepareWindowSystem() const {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The platform would warn that there is no session.
  QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
}

void HelpCommand::Check() {
  if (parser_.positionalArguments().size() > 1) {
    throw CommandError(kExitUsage, QStringLiteral("Unexpected argument '%1'; a name with spaces is quoted.")
                                       .arg(parser_.positionalArguments().at(1)));
  }
}

int HelpCommand::Execute() {
  const QString name = parser_.positionalArguments().value(0);
  const QString help = helpOf_(name);
  return Console::Print(help.isEmpty() ? HelpOfAction(name) : help) ? kExitDone : kExitSomeFailed;
}

QString HelpCommand::HelpOfAction(const QString& name) const {
  ActionCatalog catalog(ToolsFolders());
  CActionInterface* action = catalog.Find(name);
  if (action == nullptr) action = catalog.FindCommand(name);
  if (action == nullptr) {
    const QStringList known = commands_ + catalog.CommandNames() + catalog.ActionNames();
    QString message = QStringLiteral("There is no command and no action '%1'.").arg(name) + Suggestion(name, known);
    for (const QString& problem : catalog.Problems()) message += QStringLiteral(" Not loaded: ") + problem;
    throw CommandError(kExitUsage, message);
  }
  const auto description = SettingsDescription::Of(action->GetActionName());
  QString text = PageOf(*action) + QStringLiteral("\n\n");
  if (!description) return text + QStringLiteral("The action does not describe its settings.\n");
  text += description->HelpText();
  if (!description->CommandName().isEmpty()) {
    text += QStringLiteral("\nAs a command: 'vorlane-run %1', see 'vorlane-run %1 --help'.\n")
                .arg(description->CommandName());
  }
  return text;
}
