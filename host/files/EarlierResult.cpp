// SPDX-License-Identifier: Apache-2.0
#include "host/files/EarlierResult.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "host/base/Descriptor.h"

namespace {

constexpr off_t kBlock = 4096;

Descriptor OpenToRead(const std::string& name) {
  return Descriptor(open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

bool HaveSameBlock(const Descriptor& a, const Descriptor& b, off_t position, std::size_t length) {
  std::array<char, kBlock> ofA;
  std::array<char, kBlock> ofB;
  const auto whole = static_cast<ssize_t>(length);
  return pread(a.Get(), ofA.data(), length, position) == whole &&
         pread(b.Get(), ofB.data(), length, position) == whole && std::memcmp(ofA.data(), ofB.data(), length) == 0;
}

}  // namespace

bool IsEarlierResult(const std::string& output, const std::string& input) {
  const Descriptor source = OpenToRead(input);
  const Descriptor result = OpenToRead(output);
  struct stat status;
  if (!source || !result || fstat(source.Get(), &status) != 0 || status.st_size <= 0) return false;
  const off_t length = std::min<off_t>(status.st_size, kBlock);
  const auto bytes = static_cast<std::size_t>(length);
  return HaveSameBlock(source, result, status.st_size - length, bytes) && HaveSameBlock(source, result, 0, bytes);
}
