// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include "host/window/core/ActionChoice.h"

enum class RunKind { kRun, kDryRun };

// The arguments of vorlane-run that do what was chosen, without files and passwords.
QStringList RunArguments(const ActionChoice& action, const OutputChoice& output, RunKind kind = RunKind::kRun);

// The same as a command for a POSIX shell that runs over these files. Passwords are not in it: where there are any, the
// command reads them from the terminal.
QString CommandText(const ActionChoice& action, const OutputChoice& output, const QStringList& files);
