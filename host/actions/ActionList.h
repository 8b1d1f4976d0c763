// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "utils/ActionListFile.h"

// The action-list files as commands use them. All functions throw CommandError(kExitNotLoaded).
namespace ActionList {

// Reads a list of at least one action. Throws when the file cannot be read, is not an action list, or when an action's
// settings are damaged. Adds to `warnings` what of the file is left out.
ActionListFile Read(const QString& file, QStringList* warnings = nullptr);
// The file that `name` means: a path, or a list of the sequence folder by its own name or by its file name. Throws when
// there is none or the name fits several.
QString Locate(const QString& name);
// The same for a list that may not be there.
std::optional<QString> Find(const QString& name);
// Makes a list of one action, in place of what is there. Throws when it cannot be written, as the next four.
void Create(const QString& file, const QString& name, const QString& category, const ActionListFile::Entry& entry);
// Writes name, category and actions into a list; all else in the file stays. A file that is named after its list gets
// the new name, in place of what is there. Returns the list's file.
QString Store(const QString& file, const ActionListFile& list);
// Where Store() would leave the list.
QString FileAfterRename(const QString& file, const QString& newName);
void Append(const QString& file, const ActionListFile::Entry& entry);
void RemoveAction(const QString& file, int index);
// Removes a file that is an action list.
void RemoveFile(const QString& file);
// Replaces the settings of one action in the file, at once or not at all; all else stays. Throws when the file cannot
// be written.
void StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings);

}  // namespace ActionList
