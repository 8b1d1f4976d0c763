// SPDX-License-Identifier: Apache-2.0
#include "host/base/JsonText.h"

#include <cstdio>

#include "host/base/NativeName.h"

namespace {

void AppendUnit(std::string& json, char32_t unit) {
  if (unit == '"' || unit == '\\') {
    json += '\\';
    json += static_cast<char>(unit);
  } else if (unit < 0x20 || unit == 0x7F || unit == 0xFEFF || (unit >= 0xD800 && unit < 0xE000)) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
    json += escape;
  } else if (unit < 0x7F) {
    json += static_cast<char>(unit);
  } else {
    const char32_t valid = unit > 0x10FFFF ? 0xFFFD : unit;
    json += QString::fromUcs4(&valid, 1).toUtf8().toStdString();
  }
}

bool IsPlain(std::string_view bytes) {
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code >= 0x7F || c == '"' || c == '\\') return false;
  }
  return true;
}

}  // namespace

void JsonText::Append(std::string& json, const std::wstring& text) {
  json += '"';
  for (const wchar_t unit : text) AppendUnit(json, static_cast<char32_t>(unit));
  json += '"';
}

// Most names are plain ASCII and need no decoding.
void JsonText::AppendBytes(std::string& json, std::string_view bytes) {
  if (!IsPlain(bytes)) return Append(json, NativeName::ToWide(bytes));
  json += '"';
  json += bytes;
  json += '"';
}

std::string JsonText::OfBytes(std::string_view bytes) {
  std::string json;
  AppendBytes(json, bytes);
  return json;
}
