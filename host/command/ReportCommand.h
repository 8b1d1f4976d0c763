// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Merges the reports of runs and prints what failed, what was warned of and what is missing.
class ReportCommand : public Command {
 public:
  ReportCommand();

 protected:
  void Check() override;
  int Execute() override;
};
