// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <QCommandLineParser>
#include <QStringList>
#include <vector>

#include "host/command/Command.h"

// The program: finds the command that the arguments name, parses its options and runs it.
class Program {
 public:
  Program();

  // Takes the arguments without the program's own name. Throws CommandError(kExitUsage).
  void Parse(const QStringList& arguments);
  // Whether a QApplication must exist before Run; its environment is prepared then.
  bool NeedsWindowSystem() const {
    return command_ != nullptr && !command_->OnlyHelps() && command_->NeedsWindowSystem();
  }
  void PrepareWindowSystem() const { command_->PrepareWindowSystem(); }
  // Needs an application object. Returns the exit code. Throws CommandError.
  int Run();

 private:
  QString Help() const;
  // The help of the command, of the program for an empty name, or an empty text.
  QString HelpOf(const QString& name) const;
  Command* Find(const QString& name) const;
  QStringList Names() const;

  std::vector<std::unique_ptr<Command>> commands_;
  QCommandLineParser parser_;
  Command* command_ = nullptr;
};
