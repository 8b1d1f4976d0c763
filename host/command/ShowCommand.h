// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Prints the base URL of each file.
class ShowCommand : public Command {
 public:
  ShowCommand();

 protected:
  void Check() override;
  int Execute() override;
};
