// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/base/InputFile.h"

namespace engine {

// A file as text, of which one block at a time is in memory.
class FileWindow {
 public:
  // `file` must outlive this object. Reads as many bytes at a time, or as many as are asked for.
  explicit FileWindow(const InputFile& file, std::size_t block = 256 * 1024) : file_(file), block_(block) {}

  std::uint64_t Size() const { return file_.Size(); }
  // The text from `offset` on: at least `count` bytes unless the file ends before. Valid until the next call.
  std::string_view At(std::uint64_t offset, std::size_t count);

 private:
  const InputFile& file_;
  const std::size_t block_;
  std::string text_;
  std::uint64_t start_ = 0;
};

// Finds a word at ever higher offsets; all searches together read the file once.
class WordSearch {
 public:
  // Both must outlive this object.
  WordSearch(const InputFile& file, std::string_view word) : window_(file), word_(word) {}

  // The offset of the first occurrence at `from` or after it; the file's size when there is none. `from` must not be
  // lower than in the call before.
  std::uint64_t From(std::uint64_t from);

 private:
  FileWindow window_;
  const std::string_view word_;
  std::uint64_t next_ = 0;
  bool searched_ = false;
};

}  // namespace engine
