// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Merges the reports of runs and says what is left to look at.
class ReportCommand : public Command {
 public:
  ReportCommand();

 protected:
  void Check() override;
  int Execute() override;
};
