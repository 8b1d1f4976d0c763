// SPDX-License-Identifier: Apache-2.0
#include "utils/FreshSettingsFile.h"

#include <cstdio>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QUuid>

namespace {

bool WriteNewFile(const QString& path, const SettingsValues& values) {
  QSettings file(path, QSettings::IniFormat);
  return WriteSettingsValues(file, values);
}

// QSettings takes a file of the same size and time for the one it read before; two writes can share a millisecond.
void MakeNewerThan(const QString& path, const QDateTime& old) {
  QFile file(path);
  if (QFileInfo(path).lastModified() > old || !file.open(QFile::ReadWrite)) return;
  file.setFileTime(old.addMSecs(1), QFile::FileModificationTime);
}

}  // namespace

bool WriteFreshSettingsFile(const QString& path, const SettingsValues& values) {
  const QFileInfo old(path);
  if (!old.exists()) return WriteNewFile(path, values);

  const QString fresh =
      old.path() + QLatin1String("/.") + QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(".tmp");
  if (WriteNewFile(fresh, values)) {
    MakeNewerThan(fresh, old.lastModified());
    if (std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path).constData()) == 0) return true;
  }
  QFile::remove(fresh);
  return false;
}
