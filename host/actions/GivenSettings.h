// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include "host/actions/SettingsDescription.h"

// Settings as a user gave them on a command line, before they are held against the action's description.
struct GivenSettings {
  QVector<QPair<QString, QString>> values;  // by key, each key once
  QStringList cleared;                      // keys that shall be empty
  QStringList forEachFile;                  // keys whose value is made for each file later
  bool uncheckedUrls = false;
};

struct CheckedSettings {
  QMap<QString, QVariant> values;
  QStringList warnings;
};

// The settings map for the action, with the description's standard values for what is not given. Without a description
// everything is taken as it is, with a warning. Throws CommandError(kExitUsage) for an unknown key, a missing required
// one, a value that is not of its key's type, and an empty value that was not asked for by clearing its key.
CheckedSettings CheckSettings(const QString& actionName, const std::optional<SettingsDescription>& description,
                              const GivenSettings& given);

// One value as its setting's type; a switch becomes a boolean. Warnings are added. Throws CommandError(kExitUsage).
QVariant CheckedValue(const SettingsDescription::Setting& setting, const QString& value, bool uncheckedUrls,
                      QStringList& warnings);

// The keys of stored settings that the description does not know, apart from those that dialogs add.
QStringList UnknownKeys(const SettingsDescription& description, const QMap<QString, QVariant>& settings);
