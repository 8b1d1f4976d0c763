// SPDX-License-Identifier: Apache-2.0
// The backend linked in, so that it is instrumented as well, instead of loaded from beside the library.
#include "engine/document/BackendModule.h"

namespace engine {

Backend& BackendModule::Get() {
  return *HalvexEngineBackend();
}

void BackendModule::NoteLibraryPath() {}

}  // namespace engine
