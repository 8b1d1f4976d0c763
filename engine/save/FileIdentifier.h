// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "engine/save/ChangedObject.h"

namespace engine {

// The value of /ID for an update (ISO 32000-1, 14.4): the first part is kept, the second is made from the old value and
// the changes. A value that is not an array of two strings is returned as it is.
std::string UpdatedIdentifier(const std::string& identifier, const std::vector<ChangedObject>& changes);

}  // namespace engine
