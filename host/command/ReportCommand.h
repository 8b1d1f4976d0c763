// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Merges the reports of runs and prints failed files, warnings and missing files.
class ReportCommand : public Command {
 public:
  ReportCommand();

 protected:
  void Check() override;
  int Execute() override;
};
