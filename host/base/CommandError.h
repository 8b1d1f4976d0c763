// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "host/base/ExitCode.h"

// Ends a command: one line for the user and the exit code. Errors of single documents are records, not exceptions.
class CommandError {
 public:
  CommandError(ExitCode code, const QString& message) : code_(code), message_(message) {}

  ExitCode Code() const { return code_; }
  QString Message() const { return message_; }

 private:
  ExitCode code_;
  QString message_;
};
