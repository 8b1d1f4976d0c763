// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "engine/links/LocatedValue.h"

namespace engine {

// Walks over the trees in a document's catalog. Each object is visited once, so that loops end; broken parts are left
// out.

// The outline items in document order (ISO 32000-1, 12.3.3).
std::vector<ObjectId> ReadOutlineItems(ObjectTexts& objects, ObjectId catalog);

// A field without child fields (ISO 32000-1, 12.7.3) and its widgets that are separate objects.
struct FormField {
  LocatedValue field;
  std::vector<LocatedValue> widgets;
};
std::vector<FormField> ReadFormFields(ObjectTexts& objects, ObjectId catalog);

// The number of files in the name tree /EmbeddedFiles (ISO 32000-1, 7.7.4 and 7.9.6).
int CountEmbeddedFiles(ObjectTexts& objects, ObjectId catalog);

}  // namespace engine
