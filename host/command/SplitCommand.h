// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/BatchCommand.h"

class InputList;

// Splits a list of files into parts of about as many bytes, for runs on several machines.
class SplitCommand : public BatchCommand {
 public:
  SplitCommand();

 protected:
  QStringList FileArguments() const override { return parser_.positionalArguments().mid(1); }
  void Check() override;
  int Execute() override;

 private:
  void RefuseCollisions(const InputList& inputs) const;

  int parts_ = 0;
};
