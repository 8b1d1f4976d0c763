// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/command/Command.h"

class CActionInterface;

// Shows the help of the program, of a command or of an action.
class HelpCommand : public Command {
 public:
  // `helpOf` returns the help of a command, and of the program for an empty name; an empty text when there is none.
  // `commands` are the other commands, for suggestions.
  HelpCommand(std::function<QString(const QString&)> helpOf, const QStringList& commands);

  // The page of an action is read as a text document, which needs a platform for its fonts.
  bool NeedsWindowSystem() const override;
  void PrepareWindowSystem() const override;

 protected:
  void Check() override;
  int Execute() override;

 private:
  // Throws CommandError for an unknown name.
  QString HelpOfAction(const QString& name) const;

  std::function<QString(const QString&)> helpOf_;
  QStringList commands_;
};
