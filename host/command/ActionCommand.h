// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "host/actions/SettingsDescription.h"
#include "host/command/RunCommand.h"

// An action that describes itself, as a command of its own: "set-base-url URL FILE...". Which action the name means is
// found out when the command runs, because plug-ins are loaded for it.
class ActionCommand : public RunCommand {
 public:
  // `others` are the commands that a mistyped name may mean as well.
  ActionCommand(const QString& name, const QStringList& others);

  // Only reads what must be known before the action is.
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
