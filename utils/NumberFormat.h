// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <optional>
#include <QString>

/// A printf format that comes from outside, for at most one integer.
///
/// The first conversion d, i, u, o, x or X (with flags, and a width and precision of up to three digits) takes
/// `number`;
/// "%%" becomes "%". Every other conversion, those that find no number left among them, stays in the text unchanged:
/// no argument is read that does not exist. The format goes through UTF-8, and a NUL character ends it.
QString ExpandNumberFormat(const QString& format, std::optional<int> number);
