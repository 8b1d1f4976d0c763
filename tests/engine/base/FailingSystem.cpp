// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/base/FailingSystem.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <string>

Failing failing;

namespace {

int Fail(int error) {
  errno = error;
  return -1;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
  if (failing.unnamedFiles && (flags & O_TMPFILE) == O_TMPFILE) return Fail(EOPNOTSUPP);
  va_list arguments;
  va_start(arguments, flags);
  const unsigned mode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, unsigned) : 0;
  va_end(arguments);
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

off_t lseek(int file, off_t offset, int whence) noexcept {
  if (failing.holes && (whence == SEEK_DATA || whence == SEEK_HOLE)) return Fail(EINVAL);
  return syscall(SYS_lseek, file, offset, whence);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t count, unsigned flags) {
  constexpr size_t kPart = 70000;
  if (failing.copiesLie) return static_cast<ssize_t>(count);
  if (failing.copy != 0 && failing.copiesBefore-- <= 0) return Fail(failing.copy);
  if (failing.copy != 0) count = std::min(count, kPart);
  return syscall(SYS_copy_file_range, from, fromOffset, to, toOffset, count, flags);
}

ssize_t pwrite(int file, const void* data, size_t count, off_t offset) {
  std::string bytes;
  if (failing.writesLie && count > 0) {
    bytes.assign(static_cast<const char*>(data), count);
    bytes[count / 2] ^= 1;
    data = bytes.data();
  }
  return syscall(SYS_pwrite64, file, data, count, offset);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  if (!failing.beforeExchange.empty()) {
    const std::function<void()> happens = failing.beforeExchange.front();
    failing.beforeExchange.erase(failing.beforeExchange.begin());
    happens();
  }
  if (failing.exchange != 0) return Fail(failing.exchange);
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int usleep(useconds_t microseconds) {
  return failing.waiting ? 0 : poll(nullptr, 0, static_cast<int>(microseconds / 1000));
}

}  // extern "C"
#pragma GCC visibility pop
