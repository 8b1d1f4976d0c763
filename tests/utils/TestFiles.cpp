// SPDX-License-Identifier: Apache-2.0
#include "tests/utils/TestFiles.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

void SetTime(const QString& path, const QDateTime& time) {
  QFile file(path);
  ASSERT_TRUE(file.open(QFile::ReadWrite));
  file.setFileTime(time, QFile::FileModificationTime);
}

OtherProcess::OtherProcess(const std::function<void()>& task) {
  EXPECT_EQ(pipe(mPipe), 0);
  mProcess = fork();
  if (mProcess != 0) return;
  char go = 0;
  if (read(mPipe[0], &go, 1) == 1) task();
  _exit(0);
}

void OtherProcess::Run() {
  EXPECT_EQ(write(mPipe[1], "x", 1), 1);
  EXPECT_EQ(waitpid(mProcess, nullptr, 0), mProcess);
  close(mPipe[0]);
  close(mPipe[1]);
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
