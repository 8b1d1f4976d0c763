// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

// The names of the files in an output folder: the first input of a name gets it, the next ones get a copy number,
// "name (1).pdf". The names depend on the order of the inputs only.
class OutputNames {
 public:
  // `folder` may end in a slash.
  explicit OutputNames(const std::string& folder);

  // Takes an output name for an input; `relative` is its base name, or its path below an input folder. Returns the copy
  // number, 0 for none.
  std::uint32_t Take(const std::string& relative);
  // The output of that relative name and copy number.
  std::string Name(const std::string& relative, std::uint32_t copyNumber) const;

 private:
  bool TakeExactly(const std::string& name);

  std::string folder_;
  // By the hash of a taken name: its next copy number. Of two names with the same hash one gets a copy number that it
  // does not need, nothing worse.
  std::unordered_map<std::uint64_t, std::uint32_t> taken_;
};
