// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ToolsFolders.h"

#include <QCoreApplication>
#include <QDir>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"

QStringList InstalledToolsFolders() {
  const QString prefix = QCoreApplication::applicationDirPath() + QStringLiteral("/..");
  // For a program in /usr also /usr/local, where "cmake --install" puts plug-ins.
  return {prefix + QStringLiteral("/lib/vorlane/Tools"), prefix + QStringLiteral("/local/lib/vorlane/Tools")};
}

// A relative folder would load code from whatever folder the user is in.
QStringList ToolsFoldersOfEnvironment() {
  QStringList folders =
      NativeName::ToText(qgetenv("VORLANE_TOOLS_PATH").toStdString()).split(QLatin1Char(':'), Qt::SkipEmptyParts);
  for (const QString& folder : qAsConst(folders)) {
    if (QDir::isAbsolutePath(folder)) continue;
    throw CommandError(kExitUsage,
                       QStringLiteral("VORLANE_TOOLS_PATH takes absolute folders only, not '%1'.").arg(folder));
  }
  return folders;
}
