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

}  // namespace engine
