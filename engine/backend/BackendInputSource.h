// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <qpdf/InputSource.hh>
#include <string>

#include "engine/base/InputFile.h"

namespace engine {

// The parser's objects would take far more memory than files of this size need. Not a standard exception: the parser
// would take that for damage and go on.
struct TooManyTokens {};

// A file as the parser reads it: in blocks, since it asks for a few bytes at a time.
class BackendInputSource : public InputSource {
 public:
  // What the parser reads: a file, or the start of it, and bytes after that which are in memory only.
  struct View {
    std::shared_ptr<const InputFile> file;
    std::string appended;
    std::optional<std::uint64_t> end;  // of what is shown of the file

    std::uint64_t End() const { return end.value_or(file->Size()); }
  };

  explicit BackendInputSource(View view);

  qpdf_offset_t findAndSkipNextEOL() override;
  std::string const& getName() const override { return name_; }
  qpdf_offset_t tell() override { return position_; }
  void seek(qpdf_offset_t offset, int whence) override;
  void rewind() override { position_ = 0; }
  std::size_t read(char* target, std::size_t length) override;
  void unreadCh(char) override { --position_; }

 private:
  // Whether the block holds the byte at the position, after reading the block there if it does not yet.
  bool Load();
  std::size_t ReadFile(char* target, std::size_t length) const;
  const char* Here() const { return block_.data() + (position_ - blockStart_); }
  std::size_t Left() const { return block_.size() - static_cast<std::size_t>(position_ - blockStart_); }

  qpdf_offset_t Size() const;
  void CountTokens(const char* bytes, std::size_t count);

  const View view_;
  std::string name_;
  qpdf_offset_t position_ = 0;
  std::string block_;
  qpdf_offset_t blockStart_ = 0;
  std::uint64_t tokens_ = 0;
  bool inToken_ = false;
};

}  // namespace engine
