// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Files.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <QDirIterator>
#include <QFileInfo>
#include <QSettings>

FileBytes::FileBytes(const QString& name) : FileBytes(QFile::encodeName(name)) {}

void WriteFile(const FileBytes& path, const FileBytes& content) {
  QFile file(QFile::decodeName(path.bytes.c_str()));
  QDir().mkpath(QFileInfo(file).path());
  EXPECT_TRUE(file.open(QFile::WriteOnly)) << path.bytes;
  file.write(content.bytes.data(), static_cast<qint64>(content.bytes.size()));
}

QByteArray ReadFile(const FileBytes& path) {
  QFile file(QFile::decodeName(path.bytes.c_str()));
  EXPECT_TRUE(file.open(QFile::ReadOnly)) << path.bytes;
  return file.readAll();
}

std::string ReadText(const FileBytes& path) {
  QFile file(QFile::decodeName(path.bytes.c_str()));
  return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string();
}

ToolResult RunTool(const std::string& command) {
  ToolResult result;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return result;
  char block[4096];
  while (const std::size_t got = fread(block, 1, sizeof block, pipe)) result.output.append(block, got);
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
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

namespace {

void LimitFileSize(bool toNothing) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = toNothing ? 0 : limit.rlim_max;
  setrlimit(RLIMIT_FSIZE, &limit);
}

// Whether root may write what the file's permissions forbid.
void LetRootOverride(bool may) {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[2]{};
  syscall(SYS_capget, &header, data);
  constexpr __u32 kOverride = 1U << CAP_DAC_OVERRIDE;
  data[0].effective = may ? data[0].effective | (data[0].permitted & kOverride) : data[0].effective & ~kOverride;
  syscall(SYS_capset, &header, data);
}

}  // namespace

FullDisk::FullDisk() {
  std::signal(SIGXFSZ, SIG_IGN);
  LimitFileSize(true);
}

FullDisk::~FullDisk() {
  LimitFileSize(false);
}

ReadOnlyFile::ReadOnlyFile(const QString& path) : mPath(path) {
  EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner));
  LetRootOverride(false);
  EXPECT_FALSE(QFile(path).open(QFile::ReadWrite));
}

ReadOnlyFile::~ReadOnlyFile() {
  LetRootOverride(true);
  QFile::setPermissions(mPath, QFile::ReadOwner | QFile::WriteOwner);
}

void FailToSave(const QString& file, const std::function<void()>& save) {
  {
    const FullDisk full;
    save();
  }
  const ReadOnlyFile readOnly(file);
  save();
}
