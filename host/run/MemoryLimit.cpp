// SPDX-License-Identifier: Apache-2.0
#include "host/run/MemoryLimit.h"

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace {

// Private writable memory in bytes, what RLIMIT_DATA counts; 0 when it is unknown.
rlim_t DataSize() {
  std::ifstream statm("/proc/self/statm");
  rlim_t size = 0, resident = 0, shared = 0, text = 0, library = 0, data = 0;
  statm >> size >> resident >> shared >> text >> library >> data;
  return statm ? data * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) : 0;
}

}  // namespace

void MemoryLimit::Set(std::size_t bytes) {
  const rlim_t now = DataSize();
  rlimit limit = {};
  if (bytes == 0 || now == 0 || getrlimit(RLIMIT_DATA, &limit) != 0) return;
  const rlim_t wanted = now + bytes;
  if (limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur <= wanted) return;
  limit.rlim_cur = wanted;
  setrlimit(RLIMIT_DATA, &limit);
}
