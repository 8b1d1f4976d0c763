// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// The arguments of the program that run the action with these settings, without options for outputs and files: the
// action's own command where it has one.
QStringList SettingsArguments(const QString& actionName, const QMap<QString, QVariant>& settings);
