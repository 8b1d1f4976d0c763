// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "engine/document/Backend.h"

namespace engine {

// The backend, loaded on first use from the folder of the library that holds this code, so that a process that needs
// the quick reader only does not pay for a full PDF parser. May be called by several threads at a time.
class BackendModule {
 public:
  // Throws EngineError kErrorBackendMissing when the module is not there or does not load.
  static Backend& Get();
  // Remembers where the library lies, while a relative path by which it was opened still holds.
  static void NoteLibraryPath();
};

}  // namespace engine
