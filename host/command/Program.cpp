// SPDX-License-Identifier: Apache-2.0
#include "host/command/Program.h"

#include <algorithm>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Suggestion.h"
#include "host/command/ActionCommand.h"
#include "host/command/ActionsCommand.h"
#include "host/command/CleanCommand.h"
#include "host/command/EditCommand.h"
#include "host/command/HelpCommand.h"
#include "host/command/LinksCommand.h"
#include "host/command/ListsCommand.h"
#include "host/command/ReportCommand.h"
#include "host/command/RunCommand.h"
#include "host/command/ShowCommand.h"
#include "host/command/SplitCommand.h"
#include "utils/CUtils.h"

Program::Program() {
  commands_.push_back(std::make_unique<ActionsCommand>());
  commands_.push_back(std::make_unique<ShowCommand>());
  commands_.push_back(std::make_unique<LinksCommand>());
  commands_.push_back(std::make_unique<RunCommand>());
  commands_.push_back(std::make_unique<ReportCommand>());
  commands_.push_back(std::make_unique<SplitCommand>());
  commands_.push_back(std::make_unique<CleanCommand>());
  commands_.push_back(std::make_unique<ListsCommand>());
  commands_.push_back(std::make_unique<EditCommand>());
  commands_.push_back(std::make_unique<HelpCommand>([this](const QString& name) { return HelpOf(name); }, Names()));
  parser_.setApplicationDescription(QStringLiteral("Runs action plug-ins over PDF files."));
  parser_.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
  parser_.addOption(Command::HelpOption());
  parser_.addVersionOption();
  parser_.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("One of the commands below."),
                                QStringLiteral("COMMAND ..."));
}

void Program::Parse(const QStringList& arguments) {
  if (!parser_.parse(QStringList{QStringLiteral("vorlane-run")} + arguments)) {
    const auto isOption = [](const QString& argument) { return argument.startsWith(QLatin1Char('-')); };
    const QString typed = *std::find_if(arguments.begin(), arguments.end(), isOption);
    throw CommandError(kExitUsage,
                       QStringLiteral("Unknown option '%1'; see 'vorlane-run --help'.%2")
                           .arg(typed, Suggestion(typed, {QStringLiteral("--help"), QStringLiteral("--version")})));
  }
  if (parser_.isSet(QStringLiteral("help")) || parser_.isSet(QStringLiteral("version"))) return;
  QStringList rest = parser_.positionalArguments();
  if (rest.isEmpty()) throw CommandError(kExitUsage, QStringLiteral("No command is given; see 'vorlane-run --help'."));
  const QString name = rest.takeFirst();
  command_ = Find(name);
  if (command_ == nullptr) {
    commands_.push_back(std::make_unique<ActionCommand>(name, Names()));
    command_ = commands_.back().get();
  }
  // The other arguments as typed: the parser above removes a "--" that is for the command.
  command_->Parse(arguments.mid(arguments.indexOf(name) + 1));
}

Command* Program::Find(const QString& name) const {
  const auto found = std::find_if(commands_.begin(), commands_.end(),
                                  [&](const std::unique_ptr<Command>& command) { return command->Name() == name; });
  return found == commands_.end() ? nullptr : found->get();
}

QStringList Program::Names() const {
  QStringList names;
  for (const std::unique_ptr<Command>& command : commands_) names += command->Name();
  return names;
}

QString Program::HelpOf(const QString& name) const {
  if (name.isEmpty()) return Help();
  const Command* const command = Find(name);
  return command != nullptr ? command->HelpText() : QString();
}

QString Program::Help() const {
  QString text = parser_.helpText() + QStringLiteral("\nCommands (each has its own --help):\n");
  for (const std::unique_ptr<Command>& command : commands_) {
    text += QStringLiteral("  %1  %2\n").arg(command->Name(), -10).arg(command->Summary());
  }
  return text + QStringLiteral(
                    "\nEvery action that describes its settings is a command too ('vorlane-run actions' lists them):\n"
                    "  vorlane-run set-base-url https://example.org/manual/ --in-place *.pdf\n"
                    "  vorlane-run set-base-url --help\n"
                    "  vorlane-run show *.pdf\n"
                    "\nExit codes:\n"
                    "  0    all done\n"
                    "  1    some documents failed, or a dialog was cancelled\n"
                    "  2    the command line is wrong; nothing was touched\n"
                    "  3    a plug-in, an action list or the PDF library could not be loaded\n"
                    "  130  interrupted (Ctrl-C); 143 when ended by SIGTERM. The report is true.\n");
}

int Program::Run() {
  CUtils::SetAppName(QStringLiteral("vorlane-run"));
  CUtils::GetInstalationType();
  if (command_ != nullptr) return command_->Run();
  const bool help = parser_.isSet(QStringLiteral("help"));
  const bool printed = Console::Print(help ? Help() : QStringLiteral("vorlane-run " VORLANE_VERSION "\n"));
  return printed ? kExitDone : kExitSomeFailed;
}
