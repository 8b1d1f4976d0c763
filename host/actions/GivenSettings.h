// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include "host/actions/SettingsDescription.h"
#include "host/files/PathTemplate.h"

// Settings as a user gave them on a command line, before they are checked against the action's description.
struct GivenSettings {
  QVector<QPair<QString, QString>> values;       // by key, each key once
  QStringList cleared;                           // keys whose values are to be empty
  QVector<QPair<QString, QString>> forEachFile;  // by key: the template of a value that is made for each file
  bool uncheckedUrls = false;
  QMap<QString, QVariant> stored;  // from a file; the members above override it

  // Whether a value, a template or clearing is given for the key; stored settings do not count.
  bool Has(const QString& key) const;
};

struct CheckedSettings {
  QMap<QString, QVariant> values;
  QMap<QString, PathTemplate> templates;
  QStringList warnings;
};

// The settings map for the action, with the description's standard values for what is not given. Without a description
// everything is taken as it is, with a warning. Throws CommandError(kExitUsage) for an unknown key, a missing required
// one, a value that is not of its key's type, a template that makes no such value, and an empty value of a key that is
// not among the cleared ones. Unknown keys of stored settings are kept, with a warning.
CheckedSettings CheckSettings(const QString& actionName, const std::optional<SettingsDescription>& description,
                              const GivenSettings& given);

// One value as its setting's type; a switch becomes a boolean. Warnings are added. Throws CommandError(kExitUsage).
QVariant CheckedValue(const SettingsDescription::Setting& setting, const QString& value, bool uncheckedUrls,
                      QStringList& warnings);

// Throws CommandError(kExitUsage) for a key that the description does not know. Stored settings are not checked.
void CheckKeys(const SettingsDescription& description, const GivenSettings& given);

// The settings with which a dialog starts; required keys may be missing. Throws CommandError(kExitUsage) for an unknown
// key and a value that is not of its key's type.
QMap<QString, QVariant> StartSettings(const std::optional<SettingsDescription>& description,
                                      const GivenSettings& given);

// A warning for each key of stored settings that the description does not know; keys that dialogs add are left out.
QStringList UnknownKeys(const SettingsDescription& description, const QMap<QString, QVariant>& settings);

// Throws CommandError(kExitUsage) when stored settings of a list lack a required key: an action would take it for an
// empty value.
void CheckRequired(const SettingsDescription& description, const QMap<QString, QVariant>& settings,
                   const QString& list);
