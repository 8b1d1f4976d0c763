// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

// The folders of the action plug-ins that are installed with the program; they need not exist.
QStringList InstalledToolsFolders();
// The folders of the environment variable VORLANE_TOOLS_PATH, which are searched after these. Throws
// CommandError(kExitUsage) for a relative one.
QStringList ToolsFoldersOfEnvironment();
