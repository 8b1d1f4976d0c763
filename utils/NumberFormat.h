// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <optional>
#include <QString>

/// Expands a printf format from outside with at most one integer.
///
/// `number` replaces the first conversion d, i, u, o, x or X (with flags, and a width and precision of up to three
/// digits); "%%" becomes "%". Every other conversion stays as it is, so that no missing argument is read. The format
/// goes through UTF-8, and a NUL character ends it.
QString ExpandNumberFormat(const QString& format, std::optional<int> number);
