// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "engine/quick/FileTail.h"

namespace engine {

// What is known of a document without reading its objects.
struct QuickDocument {
  FileTail tail;
  // The document catalog, object tail.root, as its dictionary is in the file ("<<" to ">>").
  std::string catalog;
  // Whether the catalog has these entries. A document with neither is not signed.
  bool hasAcroForm = false;
  bool hasPerms = false;
};

}  // namespace engine
