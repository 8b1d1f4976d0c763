// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/BackendInputSource.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

constexpr std::size_t kBlock = 16 * 1024;
// The parser reads objects in pieces of 128 bytes at most, streams' data in longer ones.
constexpr std::size_t kLongestOfObject = 128;
// A number or a container costs the parser about 200 bytes. Every file may have so many, and more by its size: of
// ordinary objects' text a token takes seven bytes or more.
constexpr std::uint64_t kFreeTokens = 3'000'000;
constexpr std::uint64_t kBytesForToken = 8;

bool IsEndOfLine(char character) {
  return character == '\r' || character == '\n';
}

}  // namespace

BackendInputSource::BackendInputSource(View view) : view_(std::move(view)), name_(view_.file->Path()) {}

qpdf_offset_t BackendInputSource::Size() const {
  return static_cast<qpdf_offset_t>(view_.End()) + static_cast<qpdf_offset_t>(view_.appended.size());
}

// The bytes at the position; the position stays.
std::size_t BackendInputSource::ReadFile(char* target, std::size_t length) const {
  const auto fileEnd = static_cast<qpdf_offset_t>(view_.End());
  const auto inFile = static_cast<std::size_t>(std::max<qpdf_offset_t>(fileEnd - position_, 0));
  std::size_t got = view_.file->ReadAt(static_cast<std::uint64_t>(position_), target, std::min(length, inFile));
  const qpdf_offset_t reached = position_ + static_cast<qpdf_offset_t>(got);
  if (got < length && reached >= fileEnd && reached < Size()) {
    got += view_.appended.copy(target + got, length - got, static_cast<std::size_t>(reached - fileEnd));
  }
  return got;
}

bool BackendInputSource::Load() {
  if (position_ >= blockStart_ && position_ < blockStart_ + static_cast<qpdf_offset_t>(block_.size())) return true;
  block_.resize(kBlock);
  blockStart_ = position_;
  block_.resize(ReadFile(block_.data(), kBlock));
  return !block_.empty();
}

qpdf_offset_t BackendInputSource::findAndSkipNextEOL() {
  qpdf_offset_t found = -1;
  while (Load()) {
    const char* const end = Here() + Left();
    const char* const stop =
        found < 0 ? std::find_if(Here(), end, IsEndOfLine) : std::find_if_not(Here(), end, IsEndOfLine);
    position_ += stop - Here();
    if (stop == end) continue;
    if (found >= 0) break;
    found = position_;
  }
  return found < 0 ? position_ : found;
}

void BackendInputSource::seek(qpdf_offset_t offset, int whence) {
  const qpdf_offset_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : Size();
  if (offset < -base) throw std::runtime_error(name_ + ": seek before the start");
  position_ = base + offset;
}

// Numbers, words and openings of containers, roughly. Escaped parentheses are parts of strings.
void BackendInputSource::CountTokens(const char* bytes, std::size_t count) {
  for (const char* byte = bytes; byte != bytes + count; ++byte) {
    if (*byte == '(' || *byte == ')' || *byte == '\\') continue;
    const bool opens = *byte == '[' || *byte == '<' || *byte == '/';
    const bool regular = !PdfLexer::IsDelimiter(*byte);
    if (opens || (regular && !inToken_)) ++tokens_;
    inToken_ = regular || *byte == '/';
  }
  if (tokens_ > kFreeTokens + view_.End() / kBytesForToken) throw TooManyTokens();
}

std::size_t BackendInputSource::read(char* target, std::size_t length) {
  last_offset = position_;
  std::size_t done = 0;
  while (done < length) {
    if (length - done >= kBlock) {
      const std::size_t got = ReadFile(target + done, length - done);
      position_ += static_cast<qpdf_offset_t>(got);
      done += got;
      break;
    }
    if (!Load()) break;
    const std::size_t count = std::min(length - done, Left());
    std::memcpy(target + done, Here(), count);
    position_ += static_cast<qpdf_offset_t>(count);
    done += count;
  }
  if (length <= kLongestOfObject) CountTokens(target, done);
  return done;
}

}  // namespace engine
