// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <QByteArray>
#include <string>
#include <string_view>
#include <unordered_set>

// The report of an earlier run, read to go on where it ended. Both forms of the report are read, a JSON array and
// lines; a line that was cut off by a crash is passed over.
class ResumedReport {
 public:
  // Nothing was done before.
  ResumedReport() = default;
  // Calls `each` with the JSON object of every finished file, once a file. Throws CommandError(kExitUsage) when the
  // file cannot be read or holds no report.
  ResumedReport(const std::string& reportFile, const std::function<void(const QByteArray&)>& each);

  // Whether the earlier run saved this input to this output.
  bool Done(const std::string& file, const std::string& output) const;
  std::size_t Count() const { return done_.size(); }

 private:
  bool Take(const QByteArray& json, const std::function<void(const QByteArray&)>& each);

  std::unordered_set<std::string> done_;
};
