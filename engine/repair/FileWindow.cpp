// SPDX-License-Identifier: Apache-2.0
#include "engine/repair/FileWindow.h"

#include <algorithm>

namespace engine {

namespace {

// Kept before the offset that is asked for, since a header is found by the word at its end.
constexpr std::uint64_t kBefore = 4096;

}  // namespace

std::string_view FileWindow::At(std::uint64_t offset, std::size_t count) {
  if (offset >= Size()) return {};
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, Size() - offset));
  if (offset < start_ || offset + wanted > start_ + text_.size()) {
    start_ = offset - std::min<std::uint64_t>({offset, kBefore, block_ / 2});
    text_ = file_.ReadAt(start_, std::max(wanted + static_cast<std::size_t>(offset - start_), block_));
  }
  const std::string_view text = text_;
  return text.substr(std::min(text.size(), static_cast<std::size_t>(offset - start_)));
}

std::uint64_t WordSearch::From(std::uint64_t from) {
  if (searched_ && next_ >= from) return next_;
  searched_ = true;
  while (from < window_.Size()) {
    const std::string_view text = window_.At(from, word_.size());
    const std::size_t found = text.find(word_);
    if (found != std::string_view::npos) return next_ = from + found;
    if (text.size() < word_.size()) break;
    from += text.size() - word_.size() + 1;
  }
  return next_ = window_.Size();
}

}  // namespace engine
