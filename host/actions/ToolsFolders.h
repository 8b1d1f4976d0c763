// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

// Where the action plug-ins are looked for: the folders of those installed with the program, whether they are there or
// not.
QStringList InstalledToolsFolders();
// The folders of the environment's VORLANE_TOOLS_PATH, which come after these. Throws CommandError(kExitUsage) for a
// relative one.
QStringList ToolsFoldersOfEnvironment();
