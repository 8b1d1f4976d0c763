// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

// Opens an action's settings dialog as the host application does, and prints the settings.
class EditCommand : public Command {
 public:
  EditCommand();

  bool NeedsWindowSystem() const override { return true; }
  void PrepareWindowSystem() const override;

 protected:
  void Check() override;
  int Execute() override;

 private:
  int index_ = -1;
};
