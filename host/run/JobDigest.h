// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/actions/ConfiguredAction.h"

// What is done to a file, as 32 hexadecimal digits: the same for the same actions in the same order with the same
// settings, in every process. Reports hold it, so that a resumed run leaves out only what the same job has done.
class JobDigest {
 public:
  // Keeps a reference.
  explicit JobDigest(const std::vector<ConfiguredAction>& actions);

  // For the file whose values are made of this path; see InputList::PathBelow.
  const std::string& Of(const std::string& pathBelow) const;

 private:
  const std::vector<ConfiguredAction>& actions_;
  bool sameForAll_ = true;
  mutable std::string digest_;  // for all files, or for the one asked for last
};
