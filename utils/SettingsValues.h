// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QString>
#include <QVariant>
#include <utility>
#include <vector>

class QSettings;

/// Keys of a settings file with their values, in the order in which they are written.
using SettingsValues = std::vector<std::pair<QString, QVariant>>;

/// Sets `values` in an INI settings file and writes it at once. False when it cannot be written (a full disk, a
/// read-only folder); the values that were there before then hold again, for later readers in this process too.
bool WriteSettingsValues(QSettings& file, const SettingsValues& values);
