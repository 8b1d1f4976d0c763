// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <QByteArray>
#include <string>
#include <string_view>
#include <unordered_set>

// The report of an earlier run, read to go on where it ended.
class ResumedReport {
 public:
  // Nothing was done before.
  ResumedReport() = default;
  // Throws as ReadReport does.
  explicit ResumedReport(const std::string& reportFile);

  // Whether the earlier run saved this input to this output. The last attempt counts.
  bool Done(const std::string& file, const std::string& output) const;
  std::size_t Count() const { return done_.size(); }
  // Lines of the report that a crash cut off.
  std::size_t TornLines() const { return tornLines_; }
  // Reads the report again and calls `each` with the JSON object of every finished file, once a file.
  void CarryOver(const std::function<void(const QByteArray&)>& each) const;

 private:
  std::string name_;
  std::unordered_set<std::string> done_;
  std::size_t tornLines_ = 0;
};
