// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "utils/ActionListFile.h"

// The action-list files as commands use them. All functions throw CommandError(kExitNotLoaded).
namespace ActionList {

// Reads a list of at least one action. Throws when the file cannot be read, is no action list, or when an action's
// settings are damaged. Adds to `warnings` what of the file is left out.
ActionListFile Read(const QString& file, QStringList* warnings = nullptr);
// The file that `name` means: a path, or a list of the sequence folder by its own name or by its file name. Throws when
// there is none or the name fits several.
QString Locate(const QString& name);
// Replaces the settings of one action in the file, at once or not at all; all else stays. Throws when the file cannot
// be written.
void StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings);

}  // namespace ActionList
