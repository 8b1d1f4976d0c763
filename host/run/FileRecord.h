// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// What became of one input file. The report holds one for every file.
struct FileRecord {
  enum class Status : unsigned char { kDone, kFailed, kSkipped };

  std::string file;    // as it was named, bytes
  std::string output;  // bytes; empty when nothing was to be written
  Status status = Status::kDone;
  std::string reason;  // why it failed or was skipped; UTF-8
  std::wstring baseUrlBefore;
  std::wstring baseUrlAfter;
  long long microseconds = 0;
  std::string saveMode;  // "unchanged", "incremental", "rewrite", "unknown", or empty when nothing was saved
  std::vector<std::string> warnings;

  bool Unchanged() const { return saveMode == "unchanged"; }
  // One JSON object without line breaks. File names are UTF-8; a byte that is none is the escape \udcXX.
  std::string ToJson() const;
  // The record as bytes for another process of this program, and back.
  std::string Pack() const;
  static FileRecord Unpack(std::string_view bytes);
};
