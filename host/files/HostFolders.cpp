// SPDX-License-Identifier: Apache-2.0
#include "host/files/HostFolders.h"

#include <QDir>
#include <QStandardPaths>

#include "utils/CUtils.h"

void SetupHostFolders() {
  QDir().mkpath(CUtils::GetAppDataFolder());
  QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
  CUtils::SetupFolders();
}
