// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <QJsonObject>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// What any number of reports say together. A file counts once, however many attempts are reported: by its last record
// in the order of the reports, but a "skipped" one only if there is no other.
class ReportSummary {
 public:
  // Throws as ReadReport does.
  void AddReport(const std::string& name);
  // Expects the files of a list, and only counts those that no report names. Throws as NamedInput::ReadNames does.
  void Expect(const std::string& listFile);

  // Whether there are lines that a crash cut off, and no record.
  bool IsTornOnly() const { return files_.empty() && tornLines_ > 0; }
  bool IsAllDone() const { return failed_.empty() && missing_.empty() && !IsTornOnly(); }
  // Completes the counts; call after the last report.
  void Finish();

  // The counts, then failed files and warnings grouped by their texts, then the missing files.
  std::string ToText() const;
  // The same as one object, with all names.
  std::string ToJson() const;
  // RFC 4180, with a header: a row for each file in the order of their first records, then the missing ones.
  std::string ToCsv() const;

 private:
  struct File {
    std::string name;
    std::string output;
    std::string status;
    std::string reason;
    std::string saveMode;
    std::vector<std::string> warnings;
    std::size_t attempts = 0;
  };
  using Groups = std::map<std::string, std::vector<std::string>>;

  void Take(const QJsonObject& record);

  std::vector<File> files_;
  std::unordered_map<std::string, std::size_t> indexes_;
  std::vector<std::string> expected_;
  std::vector<std::string> missing_;
  Groups failed_;    // by reason
  Groups warnings_;  // by text
  std::size_t reports_ = 0;
  std::size_t tornLines_ = 0;
  std::size_t done_ = 0;
  std::size_t unchanged_ = 0;
  std::size_t skipped_ = 0;
  std::size_t wouldChange_ = 0;  // this and the next in a dry run
  std::size_t wouldStay_ = 0;
};
