// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QString>

/// Whether a name that the user typed has only white space.
inline bool isBlank(const QString& text) {
  return text.simplified().remove(QLatin1Char(' ')).isEmpty();
}
