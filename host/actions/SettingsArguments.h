// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// The program's arguments that run the action with these settings, as the action's own command if it has one. Outputs
// and files are not included.
QStringList SettingsArguments(const QString& actionName, const QMap<QString, QVariant>& settings);
