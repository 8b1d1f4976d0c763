// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QString>

#include "utils/SettingsValues.h"

/// Writes an INI settings file that holds exactly `values`, in their order. An existing file at `path` is replaced in
/// one step and only by a complete one: when that fails, it stays as it was and the answer is false. Folders that are
/// missing above a new file are created.
bool WriteFreshSettingsFile(const QString& path, const SettingsValues& values);
