// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/actions/ConfiguredAction.h"

// What is done to a file, as 32 hexadecimal digits: the same for the same actions in the same order with the same
// settings, in every process. Reports hold it, so that a resumed run leaves out only what the same job has done.
std::string JobDigest(const std::vector<ConfiguredAction>& actions, const std::string& root);
