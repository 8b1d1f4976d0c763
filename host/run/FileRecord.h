// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// How a file was left, to notice later changes.
struct FileState {
  static FileState Of(const std::string& file);
  // As reports have it: nanoseconds as text, since JSON readers round large numbers.
  std::string TimeText() const { return std::to_string(nanoseconds); }

  long long size = -1;  // -1: there is no such file
  long long nanoseconds = 0;
};

// What became of one input file. The report holds one for every file.
struct FileRecord {
  // The last two are those of a dry run.
  enum class Status : unsigned char { kDone, kFailed, kSkipped, kWouldChange, kUnchanged };
  static constexpr int kUnknown = -1;

  std::string file;    // as it was named, bytes
  std::string output;  // bytes; empty when nothing was to be written
  Status status = Status::kDone;
  std::string reason;  // why it failed or was skipped; UTF-8
  std::wstring baseUrlBefore;
  std::wstring baseUrlAfter;
  long long microseconds = 0;
  std::string saveMode;  // "unchanged", "incremental", "rewrite", "unknown", or empty when nothing was saved
  int signatures = kUnknown;
  int certification = kUnknown;  // 1 to 3, /P of DocMDP (ISO 32000-2, 12.8.2.2); 0 without one
  std::string backup;            // bytes; empty without one
  std::string job;               // see JobDigest
  FileState outputState;         // of a saved output
  std::vector<std::string> warnings;

  bool Unchanged() const { return saveMode == "unchanged"; }
  // One JSON object without line breaks. File names are UTF-8; a byte that is not becomes the escape \udcXX.
  std::string ToJson() const;
  // The record as bytes for another process of this program, and back.
  std::string Pack() const;
  static FileRecord Unpack(std::string_view bytes);
};
