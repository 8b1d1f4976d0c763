// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "engine/syntax/ObjectId.h"

namespace engine {

// An object of an incremental update.
struct ChangedObject {
  ObjectId id;
  // What stands between "obj" and "endobj", already encrypted where the file is.
  std::string body;
};

}  // namespace engine
