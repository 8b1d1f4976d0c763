// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Prints the base URL of each file, or all that is known of it.
class ShowCommand : public Command {
 public:
  ShowCommand();

 protected:
  void Check() override;
  int Execute() override;

 private:
  WorkerLimits workers_;
};
