// SPDX-License-Identifier: Apache-2.0
#include "host/files/OutputNames.h"

#include <functional>

namespace {

std::uint64_t Hash(const std::string& name) {
  return std::hash<std::string>()(name);
}

std::string WithNumber(const std::string& relative, std::uint32_t number) {
  const std::size_t base = relative.rfind('/') + 1;  // npos + 1 is 0
  std::size_t dot = relative.rfind('.');
  if (dot == std::string::npos || dot <= base) dot = relative.size();
  return relative.substr(0, dot) + " (" + std::to_string(number) + ")" + relative.substr(dot);
}

}  // namespace

OutputNames::OutputNames(const std::string& folder) : folder_(folder) {
  if (folder_.back() != '/') folder_ += '/';
}

bool OutputNames::TakeExactly(const std::string& name) {
  return taken_.try_emplace(Hash(name), 1).second;
}

std::uint32_t OutputNames::Take(const std::string& relative) {
  if (TakeExactly(relative)) return 0;
  for (;;) {
    const std::uint32_t number = taken_[Hash(relative)]++;
    if (TakeExactly(WithNumber(relative, number))) return number;
  }
}

std::string OutputNames::Name(const std::string& relative, std::uint32_t copyNumber) const {
  return folder_ + (copyNumber == 0 ? relative : WithNumber(relative, copyNumber));
}
