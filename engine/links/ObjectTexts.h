// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "engine/syntax/ObjectId.h"

namespace engine {

// Gives the texts of a document's objects.
class ObjectTexts {
 public:
  virtual ~ObjectTexts() = default;

  // The text between "obj" and "endobj", strings in the clear. "null" when there is no such object, and for a stream.
  virtual std::string Text(ObjectId id) = 0;
};

}  // namespace engine
