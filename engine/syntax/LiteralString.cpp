// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/LiteralString.h"

namespace engine {

std::string LiteralString(const std::string& bytes) {
  std::string text = "(";
  for (const char c : bytes) {
    switch (c) {
      case '(':
      case ')':
      case '\\':
        text += '\\';
        text += c;
        break;
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      default:
        text += c;
        break;
    }
  }
  return text + ')';
}

std::string HexString(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "<";
  text.reserve(2 * bytes.size() + 2);
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 0xF];
  }
  return text + '>';
}

}  // namespace engine
