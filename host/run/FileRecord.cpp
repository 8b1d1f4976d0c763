// SPDX-License-Identifier: Apache-2.0
#include "host/run/FileRecord.h"

#include <sys/stat.h>

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
    case FileRecord::Status::kWouldChange:
      return "would-change";
    case FileRecord::Status::kUnchanged:
      return "unchanged";
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

// The part of a record that has a fixed size.
struct Numbers {
  FileRecord::Status status;
  long long microseconds;
  int signatures;
  int certification;
  FileState outputState;
};

}  // namespace

FileState FileState::Of(const std::string& file) {
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0) return {};
  return {static_cast<long long>(status.st_size), status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec};
}

std::string FileRecord::Pack() const {
  const Numbers numbers{status, microseconds, signatures, certification, outputState};
  const std::string_view numberBytes(reinterpret_cast<const char*>(&numbers), sizeof numbers);
  RecordFraming::Fields fields{file,   output, numberBytes, reason, Bytes(baseUrlBefore), Bytes(baseUrlAfter),
                               backup, job,    saveMode};
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
  Numbers numbers;
  std::memcpy(&numbers, fields[2].data(), sizeof numbers);
  record.status = numbers.status;
  record.microseconds = numbers.microseconds;
  record.signatures = numbers.signatures;
  record.certification = numbers.certification;
  record.outputState = numbers.outputState;
  record.reason = fields[3];
  record.baseUrlBefore = Wide(fields[4]);
  record.baseUrlAfter = Wide(fields[5]);
  record.backup = fields[6];
  record.job = fields[7];
  record.saveMode = fields[8];
  record.warnings.assign(fields.begin() + 9, fields.end());
  return record;
}

std::string FileRecord::ToJson() const {
  std::string json;
  json.reserve(file.size() + output.size() + baseUrlBefore.size() + baseUrlAfter.size() + 360);
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
  json += ",\"saveMode\":";
  JsonText::AppendBytes(json, saveMode);
  json += ",\"signatures\":";
  json += signatures == kUnknown ? "null" : std::to_string(signatures);
  json += ",\"certification\":";
  json += certification <= 0 ? "null" : std::to_string(certification);
  if (!backup.empty()) {
    json += ",\"backup\":";
    JsonText::AppendBytes(json, backup);
  }
  if (!job.empty()) json += ",\"job\":\"" + job + '"';
  if (outputState.size >= 0) {
    json += ",\"outputSize\":" + std::to_string(outputState.size) + ",\"outputTime\":\"" + outputState.TimeText() + '"';
  }
  json += ",\"warnings\":[";
  for (std::size_t i = 0; i < warnings.size(); ++i) {
    if (i > 0) json += ',';
    JsonText::AppendBytes(json, warnings[i]);
  }
  json += "]}";
  return json;
}
