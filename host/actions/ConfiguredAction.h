// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "plugin/CActionInterface.h"

// One action of a run with its settings.
struct ConfiguredAction {
  CActionInterface* action;  // the catalog's
  QString name;
  QMap<QString, QVariant> settings;
};
