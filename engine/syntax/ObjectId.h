// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace engine {

// Names an indirect object (ISO 32000-1, 7.3.10).
struct ObjectId {
  std::uint32_t number = 0;
  std::uint32_t generation = 0;

  bool operator==(const ObjectId& other) const { return number == other.number && generation == other.generation; }
  bool operator!=(const ObjectId& other) const { return !(*this == other); }
  bool operator<(const ObjectId& other) const {
    return number != other.number ? number < other.number : generation < other.generation;
  }

  // "N G R"
  std::string Reference() const { return std::to_string(number) + ' ' + std::to_string(generation) + " R"; }
};

}  // namespace engine
