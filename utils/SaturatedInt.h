// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <cmath>
#include <limits>

/// The integer part of `value`; the nearest int for what does not fit one, 0 for what is not a number.
inline int SaturatedInt(double value) {
  if (std::isnan(value)) return 0;
  if (value <= std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  if (value >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  return static_cast<int>(value);
}
