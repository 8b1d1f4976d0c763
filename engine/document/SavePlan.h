// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

// How a save would be written.
struct SavePlan {
  enum class Way {
    kUnchanged,    // a copy, or nothing at all onto the loaded file
    kIncremental,  // the loaded file byte for byte, then the changed objects
    kRewrite,      // every object anew
  };
  Way way;
  // Why the file has to be rewritten, a short text; empty otherwise.
  const char* reason;
};

}  // namespace engine
