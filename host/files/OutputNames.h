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

  // Takes a name for an input whose relative name (base name, or path below an input folder) this is. Returns the copy
  // number that it gets, 0 for the name as it is.
  std::uint32_t Take(const std::string& relative);
  // The output of that relative name and copy number.
  std::string Name(const std::string& relative, std::uint32_t copyNumber) const;

 private:
  bool TakeExactly(const std::string& name);

  std::string folder_;
  // From the hash of a name that is taken to the next copy number of that name. Two names of one hash would give one of
  // them a copy number it does not need, nothing worse.
  std::unordered_map<std::uint64_t, std::uint32_t> taken_;
};
