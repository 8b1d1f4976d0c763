// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

// "1 file", "2 files": the number with a noun whose plural ends in "s".
inline std::string Counted(std::size_t count, const char* noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}
