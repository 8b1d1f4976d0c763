// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "engine/syntax/ObjectId.h"

namespace engine {

// An object of an incremental update.
struct ChangedObject {
  ObjectId id;
  // The text between "obj" and "endobj", already encrypted if the file is.
  std::string body;
};

}  // namespace engine
