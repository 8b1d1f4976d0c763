// SPDX-License-Identifier: Apache-2.0
#include "host/run/ReportSummary.h"

#include <algorithm>
#include <QJsonArray>

#include "host/base/Console.h"
#include "host/base/Counted.h"
#include "host/base/CsvText.h"
#include "host/base/JsonText.h"
#include "host/base/NamedInput.h"
#include "host/base/NativeName.h"
#include "host/run/ReportReader.h"

namespace {

// So many names of a group are shown in the text.
constexpr std::size_t kMostNames = 20;

using Groups = std::map<std::string, std::vector<std::string>>;

std::string Bytes(const QJsonValue& text) {
  return NativeName::ToBytes(text.toString()).toStdString();
}

std::size_t CountNames(const Groups& groups) {
  std::size_t count = 0;
  for (const auto& [text, names] : groups) count += names.size();
  return count;
}

void AppendNames(std::string& text, const std::vector<std::string>& names) {
  for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
    text += "    " + Console::OneLine(names[i]).toStdString() + '\n';
  }
  if (names.size() > kMostNames) {
    text += "    and " + std::to_string(names.size() - kMostNames) + " more: see --json or --csv\n";
  }
}

// The most frequent text first.
void AppendGroups(std::string& text, const char* title, const Groups& groups) {
  if (groups.empty()) return;
  std::vector<Groups::const_iterator> order;
  for (auto group = groups.begin(); group != groups.end(); ++group) order.push_back(group);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& one, const auto& other) { return one->second.size() > other->second.size(); });
  text += std::string(title) + ":\n";
  for (const auto& group : order) {
    text += "  " + std::to_string(group->second.size()) + " x " + Console::OneLine(group->first).toStdString() + '\n';
    AppendNames(text, group->second);
  }
}

std::string JsonNames(const std::vector<std::string>& names) {
  std::string json = "[";
  for (const std::string& name : names) json += (json.size() > 1 ? "," : "") + JsonText::OfBytes(name);
  return json + ']';
}

std::string JsonGroups(const Groups& groups, const char* key) {
  std::string json = "[";
  for (const auto& [text, names] : groups) {
    if (json.size() > 1) json += ',';
    json += "\n  {\"" + std::string(key) + "\":" + JsonText::OfBytes(text) + ",\"files\":" + JsonNames(names) + '}';
  }
  return json + ']';
}

}  // namespace

void ReportSummary::AddReport(const std::string& name) {
  ++reports_;
  tornLines_ += ReadReport(name, [&](const QJsonObject& record, const QByteArray&) { Take(record); });
}

void ReportSummary::Expect(const std::string& listFile) {
  NamedInput::ReadNames(listFile, "list of files", [&](std::string name) { expected_.push_back(std::move(name)); });
}

void ReportSummary::Take(const QJsonObject& record) {
  const std::string name = Bytes(record.value(QLatin1String("file")));
  const auto [known, isNew] = indexes_.try_emplace(name, files_.size());
  if (isNew) files_.push_back({name, {}, {}, {}, {}, {}});
  File& file = files_[known->second];
  const std::string status = Bytes(record.value(QLatin1String("status")));
  if (!isNew && status == "skipped") return;
  ++file.attempts;
  file.status = status;
  file.output = Bytes(record.value(QLatin1String("output")));
  file.reason = Bytes(record.value(QLatin1String("reason")));
  const QLatin1String key(record.contains(QLatin1String("saveMode")) ? "saveMode" : "way");  // "way" in older reports
  file.saveMode = Bytes(record.value(key));
  file.warnings.clear();
  for (const QJsonValue warning : record.value(QLatin1String("warnings")).toArray()) {
    file.warnings.push_back(Bytes(warning));
  }
}

void ReportSummary::Finish() {
  for (const File& file : files_) {
    for (const std::string& warning : file.warnings) warnings_[warning].push_back(file.name);
    if (file.status == "failed") failed_[file.reason].push_back(file.name);
    if (file.status == "skipped") ++skipped_;
    if (file.status == "would-change") ++wouldChange_;
    if (file.status == "unchanged") ++wouldStay_;
    if (file.status != "done") continue;
    ++done_;
    if (file.saveMode == "unchanged") ++unchanged_;
  }
  for (const std::string& name : expected_) {
    if (indexes_.try_emplace(name, files_.size()).second) missing_.push_back(name);
  }
}

std::string ReportSummary::ToText() const {
  std::string text =
      Counted(files_.size(), "file") + " in " + Counted(reports_, "report") + ": " + std::to_string(done_) + " done";
  const auto append = [&](std::size_t count, const char* what) {
    if (count > 0) text += ", " + std::to_string(count) + what;
  };
  append(unchanged_, " of them unchanged");
  append(CountNames(failed_), " failed");
  append(skipped_, " skipped");
  append(wouldChange_, " would change");
  append(wouldStay_, " would stay unchanged");
  append(missing_.size(), " in no report");
  if (tornLines_ > 0) text += ", " + Counted(tornLines_, "line") + " cut off by a crash";
  text += '\n';
  AppendGroups(text, "failed", failed_);
  AppendGroups(text, "warnings", warnings_);
  if (!missing_.empty()) text += "in no report:\n";
  AppendNames(text, missing_);
  return text;
}

std::string ReportSummary::ToJson() const {
  std::string json = "{";
  const auto append = [&](const char* key, std::size_t count) {
    json += '"' + std::string(key) + "\":" + std::to_string(count) + ',';
  };
  append("reports", reports_);
  append("files", files_.size());
  append("done", done_);
  append("unchanged", unchanged_);
  append("failed", CountNames(failed_));
  append("skipped", skipped_);
  append("wouldChange", wouldChange_);
  append("wouldStay", wouldStay_);
  append("missing", missing_.size());
  append("tornLines", tornLines_);
  return json + "\n \"failures\":" + JsonGroups(failed_, "reason") +
         ",\n \"warnings\":" + JsonGroups(warnings_, "warning") + ",\n \"missingFiles\":" + JsonNames(missing_) + "}\n";
}

std::string ReportSummary::ToCsv() const {
  std::string csv = "file,status,reason,output,saveMode,attempts,warnings\r\n";
  for (const File& file : files_) {
    std::string warnings;
    for (const std::string& warning : file.warnings) warnings += (warnings.empty() ? "" : "; ") + warning;
    csv += CsvText::Field(file.name) + ',' + file.status + ',' + CsvText::Field(file.reason) + ',' +
           CsvText::Field(file.output) + ',' + CsvText::Field(file.saveMode) + ',' + std::to_string(file.attempts) +
           ',' + CsvText::Field(warnings) + "\r\n";
  }
  for (const std::string& name : missing_) csv += CsvText::Field(name) + ",missing,,,,0,\r\n";
  return csv;
}
