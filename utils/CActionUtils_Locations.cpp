// SPDX-License-Identifier: Apache-2.0
#include <QStandardPaths>

#include "utils/CActionUtils.h"
#include "utils/CUtils.h"
#include "utils/SettingsFile.h"

namespace {

constexpr int kMostLinks = 5;

QString StorePath() {
  return CUtils::GetSettingsFolder() + QLatin1String("/LastVisitedLocations.vsf");
}

}  // namespace

void CActionUtils::SaveLastVisitedLocation(QString key, QString location) {
  SettingsFile::Change(StorePath(), [&](QSettings& store) { store.setValue(key, location); });
}

QString CActionUtils::GetLastVisitedLocation(QString key) {
  const SettingsFile store(StorePath());
  if (store.Values().contains(key)) return store.Values().value(key).toString();
  return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

void CActionUtils::SaveLastEnteredLink(QString key, QString link) {
  SettingsFile::Change(StorePath(), [&](QSettings& store) {
    QStringList links = store.value(key).toStringList();
    links.prepend(link);
    links.removeDuplicates();
    store.setValue(key, QStringList(links.mid(0, kMostLinks)));
  });
}

QStringList CActionUtils::GetLastEnteredLinks(QString key) {
  return SettingsFile(StorePath()).Values().value(key).toStringList();
}
