// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Sandbox.h"

#include <QDir>
#include <QSettings>

#ifdef __SANITIZE_ADDRESS__
// Tests ask for more memory than there is; the sanitizer is to return null then, as the system does.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
#endif

namespace {

Sandbox* gSandbox = nullptr;
QByteArray gSystemTemp;
QString gFolder;

}  // namespace

void Sandbox::Install() {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  gSystemTemp = qgetenv("TMPDIR");
  gSandbox = new Sandbox;
  gSandbox->Enter();
  testing::UnitTest::GetInstance()->listeners().Append(gSandbox);
}

QString Sandbox::Folder() {
  return gFolder;
}

void Sandbox::Enter() {
  gSystemTemp.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", gSystemTemp);
  folder_ = std::make_unique<QTemporaryDir>();
  gFolder = folder_->path();
  for (const char* name : {"home", "tmp", "data", "config", "cache", "run", "work"}) {
    QDir(gFolder).mkpath(QString::fromLatin1(name));
  }
  QFile::setPermissions(gFolder + "/run", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  const QByteArray base = QFile::encodeName(gFolder);
  qputenv("HOME", base + "/home");
  qputenv("TMPDIR", base + "/tmp");
  qputenv("XDG_DATA_HOME", base + "/data");
  qputenv("XDG_CONFIG_HOME", base + "/config");
  qputenv("XDG_CACHE_HOME", base + "/cache");
  qputenv("XDG_RUNTIME_DIR", base + "/run");
  QDir::setCurrent(gFolder + "/work");
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, gFolder + "/config");
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, gFolder + "/config");
}

void Sandbox::OnTestStart(const testing::TestInfo&) {
  Enter();
}

void Sandbox::OnTestEnd(const testing::TestInfo&) {
  QDir::setCurrent(QStringLiteral("/"));
  folder_.reset();
}
