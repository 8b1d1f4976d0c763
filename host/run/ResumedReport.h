// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <QByteArray>
#include <string>
#include <string_view>
#include <unordered_map>

// The report of an earlier run, read to go on where it ended.
class ResumedReport {
 public:
  // Nothing was done before.
  ResumedReport() = default;
  // Throws as ReadReport does.
  explicit ResumedReport(const std::string& reportFile);

  // What is known of a saved output. Empty in reports that do not say it.
  struct Result {
    std::string job;  // see JobDigest
    long long size = -1;
    std::string time;  // see FileState
    bool operator==(const Result& other) const { return job == other.job && size == other.size && time == other.time; }
  };

  // What the earlier run says of this input if it has saved it to this output, or null. The last attempt counts.
  const Result* Find(const std::string& file, const std::string& output) const;
  // The file is done again: its record is not carried over.
  void Forget(const std::string& file, const std::string& output);
  std::size_t Count() const { return done_.size(); }
  // Lines of the report that a crash cut off.
  std::size_t TornLines() const { return tornLines_; }
  // Reads the report again and calls `each` with the last JSON object of every finished file.
  void CarryOver(const std::function<void(const QByteArray&)>& each) const;

 private:
  std::string name_;
  std::unordered_map<std::string, Result> done_;
  std::size_t tornLines_ = 0;
};
