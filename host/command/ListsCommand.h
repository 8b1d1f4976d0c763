// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Shows the action lists of the sequence folder.
class ListsCommand : public Command {
 public:
  ListsCommand();

 protected:
  void Check() override { RefuseArguments(); }
  int Execute() override;
};
