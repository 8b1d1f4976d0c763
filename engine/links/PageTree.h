// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <vector>

#include "engine/links/LocatedValue.h"

namespace engine {

// The pages of a document in their order (ISO 32000-1, 7.7.3). No value for a page tree that readers may read
// differently: one that breaks the standard, or has a node or page twice.
std::optional<std::vector<ObjectId>> ReadPageTree(ObjectTexts& objects, ObjectId catalog);

}  // namespace engine
