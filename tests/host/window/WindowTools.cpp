// SPDX-License-Identifier: Apache-2.0
#include "tests/host/window/WindowTools.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPluginLoader>
#include <QThread>

#include "host/base/NativeName.h"
#include "host/window/core/CanonicalNames.h"
#include "host/window/core/RunnerProcess.h"

Runner::Runner() {
  PrepareToRun();
  RunnerProcess::SetProgramFile(QStringLiteral(VORLANE_RUN_FILE));
}

Runner::Runner(const QByteArray& script) {
  PrepareToRun();
  const QString file = QDir::tempPath() + QStringLiteral("/vorlane-run");
  QFile::remove(file);
  WriteFile(file, "#!/bin/sh\n" + script + '\n');
  QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  RunnerProcess::SetProgramFile(file);
}

Runner::~Runner() {
  RunnerProcess::SetProgramFile(QString());
}

bool Await(const std::function<bool()>& condition) {
  QElapsedTimer time;
  time.start();
  while (!condition()) {
    if (time.elapsed() > 30000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    if (!condition()) QThread::usleep(200);
  }
  return true;
}

QString Here(const QByteArray& name) {
  NativeName::InstallAsLocale();
  return QDir::currentPath() + QLatin1Char('/') + NativeName::ToText(name.toStdString());
}

QStringList MakePdfs(const QList<QByteArray>& names, const QByteArray& pdf) {
  QStringList paths;
  for (const QByteArray& name : names) {
    paths += Here(name);
    WriteFile(paths.constLast(), pdf);
  }
  return paths;
}

QVector<FoundFile> Files(const QStringList& paths) {
  QVector<FoundFile> files;
  CanonicalNames names;
  for (const QString& path : paths) {
    const QString absolute = QDir::current().absoluteFilePath(path);
    files.append({absolute, NativeName::ToText(names.Of(NativeName::ToBytes(absolute).toStdString()))});
  }
  return files;
}

ActionChoice SetBaseUrl(const QString& url) {
  QPluginLoader(QStringLiteral(SETBASEURL_FILE)).instance();
  return ActionChoice::Action(QStringLiteral("Set Base URL"), {{QStringLiteral("baseUrlString"), url}});
}

ActionChoice Probe() {
  qputenv("VORLANE_TOOLS_PATH", QFileInfo(QStringLiteral(PROBEACTION_FILE)).path().toLocal8Bit());
  return ActionChoice::Action(QStringLiteral("Probe"),
                              {{QStringLiteral("baseUrlString"), QStringLiteral("http://new/")}});
}
