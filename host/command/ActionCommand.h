// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "host/actions/SettingsDescription.h"
#include "host/command/RunCommand.h"

// An action with a settings description, as a command of its own: "set-base-url URL FILE...". The action is looked up
// when the command runs, because that loads plug-ins.
class ActionCommand : public RunCommand {
 public:
  // `others` are the names of the other commands, for suggestions.
  ActionCommand(const QString& name, const QStringList& others);

  // Reads only what must be known before the action is looked up.
  void Parse(const QStringList& arguments) override;
  int Run() override;
  QString HelpText() const override;

 protected:
  void CheckAction() const override;
  std::vector<ConfiguredAction> LoadActions(ActionCatalog& catalog, QStringList& warnings) const override;
  QStringList FileArguments() const override;

 private:
  void FindAction();
  void AddExamples();
  // Whether the first argument is the value of the description's first key.
  bool TakesValue() const;
  void CheckArguments() const;

  QStringList others_;
  QStringList arguments_;
  QStringList problems_;
  std::optional<SettingsDescription> description_;
};
