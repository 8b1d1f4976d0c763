// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/links/DictionaryView.h"
#include "engine/links/ObjectTexts.h"
#include "engine/syntax/ObjectId.h"

namespace engine {

// A value of a document and where it is, so that it can be changed there.
struct LocatedValue {
  ObjectId holder;   // the indirect object that the value is, or is part of
  std::string path;  // from there on: "/A" or "/Annots[3]/A"; empty for the object itself
  std::string text;
};

// The object; if it is a reference itself, the object that this leads to. "null" when it leads nowhere.
LocatedValue LoadObject(ObjectTexts& objects, ObjectId id);
// An entry or element of `parent`, whose text is `value`; `step` is what its path adds.
LocatedValue Resolve(ObjectTexts& objects, const LocatedValue& parent, std::string_view value, std::string_view step);
// The value of a dictionary's entry; "null" when there is none. `entries` are those of `dictionary`.
LocatedValue Entry(ObjectTexts& objects, const LocatedValue& dictionary, std::string_view key);
LocatedValue Entry(ObjectTexts& objects, const LocatedValue& dictionary, const DictionaryView& entries,
                   std::string_view key);
// The step to an array's element, counted from 0.
std::string ElementStep(std::size_t index);

}  // namespace engine
