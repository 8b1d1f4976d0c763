// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace engine {

// Names an indirect object (ISO 32000-1, 7.3.10).
struct ObjectId {
  std::uint32_t number = 0;
  std::uint32_t generation = 0;

  bool operator==(const ObjectId& other) const { return number == other.number && generation == other.generation; }
  bool operator!=(const ObjectId& other) const { return !(*this == other); }
};

}  // namespace engine
