// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "host/files/PathTemplate.h"
#include "plugin/CActionInterface.h"

// One action of a run with its settings.
struct ConfiguredAction {
  CActionInterface* action;  // the catalog's
  QString name;
  QMap<QString, QVariant> settings;
  QMap<QString, PathTemplate> templates;  // by key: values that are made for each file
};
