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
// settings are damaged. Adds a warning for each part of the file that is left out.
ActionListFile Read(const QString& file, QStringList* warnings = nullptr);
// The file that `name` means: a path, or a list of the sequence folder by its own name or by its file name. Throws when
// there is none, or several have that name.
QString Locate(const QString& name);
// The same, but nothing when there is no such list.
std::optional<QString> Find(const QString& name);
// Makes a list of one action and replaces an existing file. Throws when it cannot be written, as do the next four.
void Create(const QString& file, const QString& name, const QString& category, const ActionListFile::Entry& entry);
// Writes name, category and actions into a list; everything else in the file stays. A file that is named after its list
// is renamed with it and replaces an existing file. Returns the list's file.
QString Store(const QString& file, const ActionListFile& list);
// The file that Store() would return.
QString FileAfterRename(const QString& file, const QString& newName);
void Append(const QString& file, const ActionListFile::Entry& entry);
void RemoveAction(const QString& file, int index);
// Removes a file that is an action list.
void RemoveFile(const QString& file);
// Replaces the settings of one action in one step; everything else stays. Throws when the file cannot
// be written.
void StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings);

}  // namespace ActionList
