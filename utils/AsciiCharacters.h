// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

namespace Ascii {

// The character classes of RFC 3986, clause 2; they do not depend on the locale.
inline bool IsAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
inline bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
inline bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The byte as "%XX" (RFC 3986, 2.1).
inline QByteArray PercentEncoded(char byte) {
  return '%' + QByteArray(1, byte).toHex().toUpper();
}

}  // namespace Ascii
