// SPDX-License-Identifier: Apache-2.0
#include "engine/links/FileWindows.h"

namespace engine {

std::string_view FileWindows::View(std::uint64_t offset, std::size_t count) {
  if (count > kCheap) {
    large_ = file_.ReadAt(offset, count);
    return large_;
  }
  // Each window is twice as long as the step between two, so that it has what is asked for from any offset in its step.
  const std::uint64_t step = offset / kCheap;
  Window& window = windows_[static_cast<std::size_t>(step % windows_.size())];
  if (window.offset != step * kCheap) {
    window.bytes = file_.ReadAt(step * kCheap, 2 * kCheap);
    window.offset = step * kCheap;
  }
  const auto begin = static_cast<std::size_t>(offset - window.offset);
  return begin < window.bytes.size() ? std::string_view(window.bytes).substr(begin) : std::string_view();
}

}  // namespace engine
