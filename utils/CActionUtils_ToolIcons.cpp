// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionUtils.h"
#include "utils/KitResources.h"

QIcon CActionUtils::GetIconForTool(QString fileName) {
  InitKitResources();
  return QIcon(QLatin1String(":/Vorlane/Resources/Tools/") + fileName);
}
