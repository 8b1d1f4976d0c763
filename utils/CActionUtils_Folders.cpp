// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

QString CActionUtils::GetSettingsFolder() {
  return CUtils::GetSettingsFolder();
}

QString CActionUtils::GetCollectionsFolder() {
  return CUtils::GetCollectionsFolder();
}

QString CActionUtils::GetSequenceFolder() {
  return CUtils::GetSequenceFolder();
}

QString CActionUtils::GetVorlaneAppDataFolder() {
  return CUtils::GetAppDataToolsFolder();
}
