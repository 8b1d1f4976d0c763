// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>

namespace engine {

// What was set in a document since it was opened and differs from what it holds.
struct Changes {
  std::optional<std::string> baseUrl;              // as it shall stand in the file; empty removes it
  std::map<std::string, std::string> information;  // UTF-8 by key without slash; an empty value removes the entry

  bool Empty() const { return !baseUrl && information.empty(); }
};

}  // namespace engine
