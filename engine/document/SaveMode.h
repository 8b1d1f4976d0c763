// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

enum class SaveMode {
  kUnchanged,    // a copy, or nothing at all onto the loaded file
  kIncremental,  // the loaded file byte for byte, then the changed objects
  kRewrite,      // every object anew
};

// How a save would be written.
struct SavePlan {
  SaveMode mode;
  // Why the file has to be rewritten, a short text; empty otherwise.
  const char* reason;
};

}  // namespace engine
