// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "engine/syntax/ObjectId.h"

// What libqpdf reads in a file, to compare the quick reader with.
struct FullParser {
  engine::ObjectId root;
  std::string baseUrl;
  int pageCount = 0;
  std::string warning;  // the first one; empty for a sound file

  bool Sound() const { return warning.empty(); }

  // No value when libqpdf cannot open the file.
  static std::optional<FullParser> Read(const std::string& bytes);
};
