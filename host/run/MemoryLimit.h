// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace MemoryLimit {

// From now on this process may take so many bytes more than it has; 0 sets no limit. Beyond it allocations fail as they
// do when memory runs out, so that one monstrous file fails instead of bringing the machine to its knees. Does nothing
// where the system does not say what the process has.
void Set(std::size_t bytes);

}  // namespace MemoryLimit
