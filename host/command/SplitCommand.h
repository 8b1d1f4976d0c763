// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

class InputList;

// Splits a list of files into parts of about as many bytes, for runs on several machines.
class SplitCommand : public Command {
 public:
  SplitCommand();

 protected:
  void Check() override;
  int Execute() override;

 private:
  void RefuseCollisions(const InputList& inputs) const;

  int parts_ = 0;
};
