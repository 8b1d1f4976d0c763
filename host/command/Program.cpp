// SPDX-License-Identifier: Apache-2.0
#include "host/command/Program.h"

#include <algorithm>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/command/ActionsCommand.h"
#include "host/command/CleanCommand.h"
#include "host/command/EditCommand.h"
#include "host/command/ListsCommand.h"
#include "host/command/ReportCommand.h"
#include "host/command/RunCommand.h"
#include "host/command/ShowCommand.h"
#include "host/command/SplitCommand.h"
#include "utils/CUtils.h"

Program::Program() {
  commands_.push_back(std::make_unique<ActionsCommand>());
  commands_.push_back(std::make_unique<ShowCommand>());
  commands_.push_back(std::make_unique<RunCommand>());
  commands_.push_back(std::make_unique<ReportCommand>());
  commands_.push_back(std::make_unique<SplitCommand>());
  commands_.push_back(std::make_unique<CleanCommand>());
  commands_.push_back(std::make_unique<ListsCommand>());
  commands_.push_back(std::make_unique<EditCommand>());
  parser_.setApplicationDescription(QStringLiteral("Runs action plug-ins over PDF files."));
  parser_.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
  parser_.addOption(Command::HelpOption());
  parser_.addVersionOption();
  parser_.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("One of the commands below."),
                                QStringLiteral("COMMAND ..."));
}

void Program::Parse(const QStringList& arguments) {
  if (!parser_.parse(QStringList{QStringLiteral("vorlane-run")} + arguments)) {
    throw CommandError(kExitUsage, parser_.errorText());
  }
  if (parser_.isSet(QStringLiteral("help")) || parser_.isSet(QStringLiteral("version"))) return;
  QStringList rest = parser_.positionalArguments();
  if (rest.isEmpty()) throw CommandError(kExitUsage, QStringLiteral("No command is given; see 'vorlane-run --help'."));
  const QString name = rest.takeFirst();
  const auto found = std::find_if(commands_.begin(), commands_.end(),
                                  [&](const std::unique_ptr<Command>& command) { return command->Name() == name; });
  if (found == commands_.end()) {
    throw CommandError(kExitUsage, QStringLiteral("Unknown command '%1'; see 'vorlane-run --help'.").arg(name));
  }
  command_ = found->get();
  // The rest as it was typed: the parser above takes a "--" out that belongs to the command.
  command_->Parse(arguments.mid(arguments.indexOf(name) + 1));
}

QString Program::Help() const {
  QString text = parser_.helpText() + QStringLiteral("\nCommands (each has its own --help):\n");
  for (const std::unique_ptr<Command>& command : commands_) {
    text += QStringLiteral("  %1  %2\n").arg(command->Name(), -10).arg(command->Summary());
  }
  text += QStringLiteral(
      "\nExit codes: 0 all done; 1 some documents failed; 2 bad usage; 3 a plug-in, an action list or the "
      "PDF library\ncould not be loaded; 130 or 143 interrupted.\n");
  return text;
}

int Program::Run() {
  CUtils::SetAppName(QStringLiteral("vorlane-run"));
  CUtils::GetInstalationType();
  if (command_ != nullptr) return command_->Run();
  const bool help = parser_.isSet(QStringLiteral("help"));
  const bool printed = Console::Print(help ? Help() : QStringLiteral("vorlane-run " VORLANE_VERSION "\n"));
  return printed ? kExitDone : kExitSomeFailed;
}
