// SPDX-License-Identifier: Apache-2.0
#include "host/run/FileRecord.h"

#include <cstdio>
#include <cstring>

#include "host/base/NativeName.h"
#include "host/run/RecordFraming.h"

namespace {

void AppendUnit(std::string& json, char32_t unit) {
  if (unit == '"' || unit == '\\') {
    json += '\\';
    json += static_cast<char>(unit);
  } else if (unit < 0x20 || unit == 0x7F || (unit >= 0xD800 && unit < 0xE000)) {
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

std::string_view Bytes(const std::wstring& text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

std::wstring Wide(std::string_view bytes) {
  std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
  return text;
}

}  // namespace

std::string FileRecord::Pack() const {
  const std::string_view statusByte(reinterpret_cast<const char*>(&status), sizeof status);
  const std::string_view time(reinterpret_cast<const char*>(&microseconds), sizeof microseconds);
  RecordFraming::Fields fields{file, output,  statusByte, reason, Bytes(baseUrlBefore), Bytes(baseUrlAfter),
                               time, saveMode};
  fields.insert(fields.end(), warnings.begin(), warnings.end());
  std::string bytes;
  RecordFraming::Append(bytes, fields);
  return bytes;
}

FileRecord FileRecord::Unpack(std::string_view bytes) {
  const RecordFraming::Fields fields = RecordFraming::Parse(bytes);
  FileRecord record;
  record.file = fields[0];
  record.output = fields[1];
  std::memcpy(&record.status, fields[2].data(), sizeof record.status);
  record.reason = fields[3];
  record.baseUrlBefore = Wide(fields[4]);
  record.baseUrlAfter = Wide(fields[5]);
  std::memcpy(&record.microseconds, fields[6].data(), sizeof record.microseconds);
  record.saveMode = fields[7];
  record.warnings.assign(fields.begin() + 8, fields.end());
  return record;
}

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
  AppendBytes(json, saveMode);
  json += ",\"warnings\":[";
  for (std::size_t i = 0; i < warnings.size(); ++i) {
    if (i > 0) json += ',';
    AppendBytes(json, warnings[i]);
  }
  json += "]}";
  return json;
}
