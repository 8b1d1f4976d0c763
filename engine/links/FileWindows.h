// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/base/InputFile.h"

namespace engine {

// A cache of up to 64 pieces of a file, 16 KiB each.
class FileWindows {
 public:
  // `file` must outlive this object.
  explicit FileWindows(const InputFile& file) : file_(file) {}

  // `count` bytes or more from `offset` on; fewer only where the file ends. Valid until the next call.
  std::string_view View(std::uint64_t offset, std::size_t count);

  // View() of up to this many bytes uses the cache.
  static constexpr std::size_t kCheap = std::size_t{8} * 1024;

 private:
  struct Window {
    std::uint64_t offset = ~std::uint64_t{0};
    std::string bytes;
  };

  const InputFile& file_;
  std::array<Window, 64> windows_;
  std::string large_;
};

}  // namespace engine
