// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Lists the action plug-ins.
class ActionsCommand : public Command {
 public:
  ActionsCommand();

 protected:
  void Check() override { RefuseArguments(); }
  int Execute() override;
};
