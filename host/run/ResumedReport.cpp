// SPDX-License-Identifier: Apache-2.0
#include "host/run/ResumedReport.h"

#include <QJsonObject>

#include "host/base/NativeName.h"
#include "host/run/ReportReader.h"

namespace {

// NUL is in no file name.
std::string Key(std::string_view file, std::string_view output) {
  std::string key(file);
  key += '\0';
  key += output;
  return key;
}

std::string KeyOf(const QJsonObject& record) {
  const auto bytes = [&](const char* name) {
    return NativeName::ToBytes(record.value(QLatin1String(name)).toString()).toStdString();
  };
  return Key(bytes("file"), bytes("output"));
}

bool HasStatus(const QJsonObject& record, const char* status) {
  return record.value(QLatin1String("status")).toString() == QLatin1String(status);
}

}  // namespace

ResumedReport::ResumedReport(const std::string& reportFile) : name_(reportFile) {
  tornLines_ = ReadReport(name_, [&](const QJsonObject& record, const QByteArray&) {
    if (HasStatus(record, "done")) done_.insert(KeyOf(record));
    if (HasStatus(record, "failed")) done_.erase(KeyOf(record));
  });
}

bool ResumedReport::Done(const std::string& file, const std::string& output) const {
  return !done_.empty() && done_.count(Key(file, output)) != 0;
}

void ResumedReport::CarryOver(const std::function<void(const QByteArray&)>& each) const {
  if (name_.empty()) return;
  std::unordered_set<std::string> left = done_;
  ReadReport(name_, [&](const QJsonObject& record, const QByteArray& json) {
    if (HasStatus(record, "done") && left.erase(KeyOf(record)) != 0) each(json);
  });
}
