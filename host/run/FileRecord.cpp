// SPDX-License-Identifier: Apache-2.0
#include "host/run/FileRecord.h"

#include <cstdio>
#include <cstring>

#include "host/base/JsonText.h"
#include "host/run/RecordFraming.h"

namespace {

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
  JsonText::AppendBytes(json, file);
  json += ",\"output\":";
  JsonText::AppendBytes(json, output);
  json += ",\"status\":\"";
  json += Name(status);
  json += "\",\"reason\":";
  JsonText::AppendBytes(json, reason);
  json += ",\"baseUrlBefore\":";
  JsonText::Append(json, baseUrlBefore);
  json += ",\"baseUrlAfter\":";
  JsonText::Append(json, baseUrlAfter);
  char milliseconds[32];
  std::snprintf(milliseconds, sizeof milliseconds, "%lld.%03lld", microseconds / 1000, microseconds % 1000);
  json += ",\"milliseconds\":";
  json += milliseconds;
  json += ",\"way\":";
  JsonText::AppendBytes(json, saveMode);
  json += ",\"warnings\":[";
  for (std::size_t i = 0; i < warnings.size(); ++i) {
    if (i > 0) json += ',';
    JsonText::AppendBytes(json, warnings[i]);
  }
  json += "]}";
  return json;
}
