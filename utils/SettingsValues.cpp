// SPDX-License-Identifier: Apache-2.0
#include "utils/SettingsValues.h"

#include <QSettings>
#include <QStringList>

bool WriteSettingsValues(QSettings& file, const SettingsValues& values) {
  SettingsValues before;
  for (const auto& [key, value] : values) {
    if (file.contains(key)) before.emplace_back(key, file.value(key));
    file.setValue(key, value);
  }
  file.sync();
  // Not any error: a damaged line was met when the file was read, and is gone now.
  if (file.status() != QSettings::AccessError) return true;
  // Qt keeps what it could not write, answers it to every later reader and writes it with the next change.
  for (const auto& [key, value] : values) {
    file.beginGroup(key);  // remove() takes what is below the key along
    const QStringList keysBelow = file.allKeys();
    for (const QString& below : keysBelow) before.emplace_back(key + QLatin1Char('/') + below, file.value(below));
    file.endGroup();
    file.remove(key);
  }
  for (const auto& [key, value] : before) file.setValue(key, value);
  return false;
}
