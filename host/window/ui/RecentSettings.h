// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

// What was done lately: settings of actions, and the files of lists and settings that were opened. Kept in a file of
// the settings folder, newest first. What cannot be read is left out, and an entry that cannot be written is lost.
namespace RecentSettings {

struct Entry {
  QString actionName;
  QMap<QString, QVariant> settings;
};

QVector<Entry> All();
// Puts the entry first, each once and eight at most.
void Add(const Entry& entry);
void Clear();

// Opened files that are still there.
QStringList Files();
void AddFile(const QString& file);
void RemoveFile(const QString& file);

}  // namespace RecentSettings
