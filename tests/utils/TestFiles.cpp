// SPDX-License-Identifier: Apache-2.0
#include "tests/utils/TestFiles.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <QDirIterator>
#include <QFileInfo>
#include <QSettings>

void WriteFile(const QString& path, const QByteArray& content) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  ASSERT_TRUE(file.open(QFile::WriteOnly)) << qPrintable(path);
  file.write(content);
}

std::string ReadText(const QString& path) {
  QFile file(path);
  return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string();
}

QStringList Tree(const QString& folder) {
  QStringList entries;
  QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                   QDirIterator::Subdirectories);
  while (all.hasNext()) entries << QDir(folder).relativeFilePath(all.next());
  entries.sort();
  return entries;
}

QVariant IniValue(const QString& path, const QString& key) {
  return QSettings(path, QSettings::IniFormat).value(key);
}

FullDisk::FullDisk() {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = 0;
  setrlimit(RLIMIT_FSIZE, &limit);
}

FullDisk::~FullDisk() {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_FSIZE, &limit);
}
