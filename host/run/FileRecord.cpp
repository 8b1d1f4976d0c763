// SPDX-License-Identifier: Apache-2.0
#include "host/run/FileRecord.h"

#include <cstdio>

#include "host/base/NativeName.h"

namespace {

void AppendUtf8(std::string& json, char32_t codePoint) {
  const auto tail = [&](int shift) { json += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F)); };
  if (codePoint < 0x80) {
    json += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    json += static_cast<char>(0xC0 | (codePoint >> 6));
    tail(0);
  } else if (codePoint < 0x10000) {
    json += static_cast<char>(0xE0 | (codePoint >> 12));
    tail(6);
    tail(0);
  } else {
    json += static_cast<char>(0xF0 | (codePoint >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

void AppendUnit(std::string& json, char32_t unit) {
  if (unit == '"' || unit == '\\') {
    json += '\\';
    json += static_cast<char>(unit);
  } else if (unit < 0x20 || unit == 0x7F || (unit >= 0xD800 && unit < 0xE000)) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
    json += escape;
  } else {
    AppendUtf8(json, unit > 0x10FFFF ? 0xFFFD : unit);
  }
}

void AppendText(std::string& json, const std::wstring& text) {
  json += '"';
  for (const wchar_t unit : text) AppendUnit(json, static_cast<char32_t>(unit));
  json += '"';
}

bool IsPlain(std::string_view bytes) {
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code >= 0x7F || c == '"' || c == '\\') return false;
  }
  return true;
}

// Most names are plain ASCII and need no decoding.
void AppendBytes(std::string& json, std::string_view bytes) {
  if (!IsPlain(bytes)) return AppendText(json, NativeName::ToWide(bytes));
  json += '"';
  json += bytes;
  json += '"';
}

const char* Name(FileRecord::Status status) {
  switch (status) {
    case FileRecord::Status::kDone:
      return "done";
    case FileRecord::Status::kFailed:
      return "failed";
    case FileRecord::Status::kSkipped:
      break;
  }
  return "skipped";
}

}  // namespace

std::string FileRecord::ToJson() const {
  std::string json;
  json.reserve(file.size() + output.size() + baseUrlBefore.size() + baseUrlAfter.size() + 200);
  json += "{\"file\":";
  AppendBytes(json, file);
  json += ",\"output\":";
  AppendBytes(json, output);
  json += ",\"status\":\"";
  json += Name(status);
  json += "\",\"reason\":";
  AppendBytes(json, reason);
  json += ",\"baseUrlBefore\":";
  AppendText(json, baseUrlBefore);
  json += ",\"baseUrlAfter\":";
  AppendText(json, baseUrlAfter);
  char milliseconds[32];
  std::snprintf(milliseconds, sizeof milliseconds, "%lld.%03lld", microseconds / 1000, microseconds % 1000);
  json += ",\"milliseconds\":";
  json += milliseconds;
  json += ",\"way\":";
  AppendBytes(json, way);
  json += ",\"warnings\":[";
  for (std::size_t i = 0; i < warnings.size(); ++i) {
    if (i > 0) json += ',';
    AppendBytes(json, warnings[i]);
  }
  json += "]}";
  return json;
}
