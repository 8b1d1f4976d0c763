// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

// The folders of the environment's VORLANE_TOOLS_PATH. Throws CommandError(kExitUsage) for a relative one.
QStringList ToolsFoldersOfEnvironment();

// The folders in which the program's action plug-ins are looked for: those installed with it, then those of the
// environment. Throws as ToolsFoldersOfEnvironment().
QStringList StandardToolsFolders();
