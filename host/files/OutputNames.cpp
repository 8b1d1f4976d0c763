// SPDX-License-Identifier: Apache-2.0
#include "host/files/OutputNames.h"

#include <functional>

namespace {

std::uint64_t Hash(const std::string& name) {
  return std::hash<std::string>()(name);
}

}  // namespace

OutputNames::OutputNames(const std::string& folder) : folder_(folder) {
  if (folder_.back() != '/') folder_ += '/';
}

bool OutputNames::Take(const std::string& name) {
  return taken_.try_emplace(Hash(name), 1).second;
}

std::string OutputNames::For(const std::string& relative) {
  if (Take(relative)) return folder_ + relative;
  const std::size_t base = relative.rfind('/') + 1;  // npos + 1 is 0
  std::size_t dot = relative.rfind('.');
  if (dot == std::string::npos || dot <= base) dot = relative.size();
  for (;;) {
    const std::uint32_t number = taken_[Hash(relative)]++;
    const std::string name = relative.substr(0, dot) + " (" + std::to_string(number) + ")" + relative.substr(dot);
    if (Take(name)) return folder_ + name;
  }
}
