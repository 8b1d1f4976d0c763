// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Removes the hidden temporary files that killed runs have left.
class CleanCommand : public Command {
 public:
  CleanCommand();

 protected:
  void Check() override;
  int Execute() override;
};
