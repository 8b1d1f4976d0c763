// SPDX-License-Identifier: Apache-2.0
#include <QSettings>
#include <QStandardPaths>

#include "utils/CActionUtils.h"
#include "utils/CUtils.h"
#include "utils/SettingsValues.h"

namespace {

constexpr int kMostLinks = 5;

QString StorePath() {
  return CUtils::GetSettingsFolder() + QLatin1String("/LastVisitedLocations.vsf");
}

}  // namespace

void CActionUtils::SaveLastVisitedLocation(QString key, QString location) {
  QSettings store(StorePath(), QSettings::IniFormat);
  WriteSettingsValues(store, {{key, location}});
}

QString CActionUtils::GetLastVisitedLocation(QString key) {
  const QSettings store(StorePath(), QSettings::IniFormat);
  if (store.contains(key)) return store.value(key).toString();
  return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

void CActionUtils::SaveLastEnteredLink(QString key, QString link) {
  QSettings store(StorePath(), QSettings::IniFormat);
  QStringList links = store.value(key).toStringList();
  links.prepend(link);
  links.removeDuplicates();
  WriteSettingsValues(store, {{key, QStringList(links.mid(0, kMostLinks))}});
}

QStringList CActionUtils::GetLastEnteredLinks(QString key) {
  return QSettings(StorePath(), QSettings::IniFormat).value(key).toStringList();
}
