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

ResumedReport::Result ResultOf(const QJsonObject& record) {
  const auto text = [&](const char* name) { return record.value(QLatin1String(name)).toString().toStdString(); };
  const auto size = static_cast<long long>(record.value(QLatin1String("outputSize")).toDouble(-1));
  return {text("job"), size, text("outputTime")};
}

}  // namespace

ResumedReport::ResumedReport(const std::string& reportFile) : name_(reportFile) {
  tornLines_ = ReadReport(name_, [&](const QJsonObject& record, const QByteArray&) {
    if (HasStatus(record, "done")) done_[KeyOf(record)] = ResultOf(record);
    if (HasStatus(record, "failed")) done_.erase(KeyOf(record));
  });
}

const ResumedReport::Result* ResumedReport::Find(const std::string& file, const std::string& output) const {
  if (done_.empty()) return nullptr;
  const auto found = done_.find(Key(file, output));
  return found != done_.end() ? &found->second : nullptr;
}

void ResumedReport::Forget(const std::string& file, const std::string& output) {
  done_.erase(Key(file, output));
}

void ResumedReport::CarryOver(const std::function<void(const QByteArray&)>& each) const {
  if (name_.empty()) return;
  std::unordered_map<std::string, Result> left = done_;
  ReadReport(name_, [&](const QJsonObject& record, const QByteArray& json) {
    if (!HasStatus(record, "done")) return;
    const auto found = left.find(KeyOf(record));
    if (found == left.end() || !(found->second == ResultOf(record))) return;
    each(json);
    left.erase(found);
  });
}
