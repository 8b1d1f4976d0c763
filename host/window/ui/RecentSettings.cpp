// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/RecentSettings.h"

#include <algorithm>
#include <QFile>
#include <QFileInfo>

#include "host/actions/StoredSettings.h"
#include "utils/CActionUtils.h"
#include "utils/SettingsFile.h"

namespace {

constexpr int kMost = 8;

QString StoreFile() {
  return CActionUtils::GetSettingsFolder() + QStringLiteral("/VorlaneActionsWindow.vsf");
}

void Store(const char* key, const QVariant& value) {
  SettingsFile::Change(StoreFile(), [&](QSettings& store) { store.setValue(QLatin1String(key), value); });
}

}  // namespace

QVector<RecentSettings::Entry> RecentSettings::All() {
  QVector<Entry> entries;
  for (const QVariant& value : SettingsFile(StoreFile()).Values().value(QStringLiteral("Recent")).toList()) {
    Entry entry{QString(), value.toMap()};
    entry.actionName = entry.settings.take(QStringLiteral("ActionName")).toString();
    if (!entry.actionName.isEmpty()) entries += entry;
  }
  return entries;
}

void RecentSettings::Add(const Entry& entry) {
  QVariantMap newest = entry.settings;
  for (const QString& key : StoredSettings::KeysOfDialogs()) newest.remove(key);
  newest.insert(QStringLiteral("ActionName"), entry.actionName);
  QVariantList values = SettingsFile(StoreFile()).Values().value(QStringLiteral("Recent")).toList();
  values.removeAll(newest);
  values.prepend(newest);
  Store("Recent", values.mid(0, kMost));
}

void RecentSettings::Clear() {
  Store("Recent", QVariantList());
}

QStringList RecentSettings::Files() {
  QStringList files = SettingsFile(StoreFile()).Values().value(QStringLiteral("Files")).toStringList();
  files.erase(std::remove_if(files.begin(), files.end(), [](const QString& file) { return !QFile::exists(file); }),
              files.end());
  return files;
}

void RecentSettings::AddFile(const QString& file) {
  const QString path = QFileInfo(file).absoluteFilePath();
  QStringList files = Files();
  files.removeAll(path);
  files.prepend(path);
  Store("Files", QStringList(files.mid(0, kMost)));
}

void RecentSettings::RemoveFile(const QString& file) {
  QStringList files = Files();
  files.removeAll(file);
  Store("Files", files);
}
