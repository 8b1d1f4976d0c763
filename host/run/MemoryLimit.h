// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace MemoryLimit {

// Limits this process to so many bytes more than it has now; 0 sets no limit. Further allocations fail as they do when
// memory runs out, so that one huge file fails and the machine goes on. Does nothing where the system does not report
// the process's memory.
void Set(std::size_t bytes);

}  // namespace MemoryLimit
