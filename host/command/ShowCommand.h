// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/BatchCommand.h"

// Prints the base URL of each file, or all facts about it.
class ShowCommand : public BatchCommand {
 public:
  ShowCommand();

 protected:
  void Check() override;
  int Execute() override;
};
