// SPDX-License-Identifier: Apache-2.0
#include "utils/KitResources.h"

#include <QtGlobal>

void InitKitResources() {
  Q_INIT_RESOURCE(vorlane);
}
