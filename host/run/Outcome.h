// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "host/run/FileRecord.h"

// What the main process needs of a file's record: it is made ready where the file was processed, because the main
// process serves all workers. The views belong to whoever made it.
struct Outcome {
  std::string_view file;
  FileRecord::Status status;
  bool unchanged;
  std::string_view reason;
  std::string_view warnings;  // one a line
  std::string_view json;      // empty when there is no report
};
