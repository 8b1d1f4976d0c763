// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/PdfName.h"

#include <cctype>

#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

bool IsHexDigit(char c) {
  return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

}  // namespace

std::string UnescapedName(std::string_view name) {
  if (name.find('#') == std::string_view::npos) return std::string(name);
  std::string bytes;
  bytes.reserve(name.size());
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '#' && i + 2 < name.size() && IsHexDigit(name[i + 1]) && IsHexDigit(name[i + 2])) {
      bytes += static_cast<char>(std::stoi(std::string(name.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      bytes += name[i];
    }
  }
  return bytes;
}

std::string EscapedName(std::string_view name) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "/";
  for (const char c : name.substr(1)) {
    if (c > ' ' && c < '\x7F' && c != '#' && !PdfLexer::IsDelimiter(c)) {
      text += c;
    } else {
      text += '#';
      text += kDigits[static_cast<unsigned char>(c) >> 4];
      text += kDigits[static_cast<unsigned char>(c) & 0xF];
    }
  }
  return text;
}

}  // namespace engine
