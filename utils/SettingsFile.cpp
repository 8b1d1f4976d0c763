// SPDX-License-Identifier: Apache-2.0
#include "utils/SettingsFile.h"

#include <cstdio>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QUuid>

namespace {

bool Write(QSettings& file, const std::function<void(QSettings&)>& change) {
  change(file);
  file.sync();
  return file.status() != QSettings::AccessError;  // a format error is about lines that were read
}

// QSettings does not read a file again that has the same size and time as before, and the file system's clock may not
// advance for some milliseconds. So the new file gets a time after the old one's, unless that is in the future.
void MakeNewerThan(const QString& path, const QDateTime& old) {
  constexpr int kMostAhead = 100;  // ms
  QFile file(path);
  const qint64 ahead = QFileInfo(path).lastModified().msecsTo(old);
  if (!old.isValid() || ahead < 0 || ahead > kMostAhead || !file.open(QFile::ReadWrite)) return;
  file.setFileTime(old.addMSecs(1), QFile::FileModificationTime);
}

}  // namespace

SettingsFile::SettingsFile(const QString& path) {
  // QSettings follows one link when it writes.
  const QString target = QFileInfo(path).exists() ? QFileInfo(path).canonicalFilePath() : QDir().absoluteFilePath(path);
  mFolder.emplace();
  // Without a usable temporary folder the link is made beside the file.
  if (!mFolder->isValid()) mFolder.emplace(QFileInfo(target).path() + QLatin1String("/.vorlane-XXXXXX"));
  const QString link = mFolder->filePath(QString("settings"));
  mIsPrivate = mFolder->isValid() && QFile::link(target, link);
  mSettings.emplace(mIsPrivate ? link : path, QSettings::IniFormat);
}

bool SettingsFile::Change(const QString& path, const std::function<void(QSettings&)>& change) {
  const QFileInfo info(path);
  QDir().mkpath(info.path());
  QLockFile lock(path + QLatin1String(".lock"));  // the one that QSettings uses
  if (!lock.lock()) return false;
  const QDateTime old = info.lastModified();
  SettingsFile file(path);
  if (!file.mIsPrivate || !Write(*file.mSettings, change)) return false;
  MakeNewerThan(path, old);
  return true;
}

bool SettingsFile::Replace(const QString& path, const std::function<void(QSettings&)>& fill) {
  const QFileInfo old(path);
  const QDateTime oldTime = old.lastModified();
  const QString fresh =
      old.path() + QLatin1String("/.") + QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(".tmp");
  bool written = false;
  {
    QSettings file(fresh, QSettings::IniFormat);
    written = Write(file, fill);
  }
  if (written) {
    MakeNewerThan(fresh, oldTime);
    if (std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path).constData()) == 0) return true;
  }
  QFile::remove(fresh);
  return false;
}
