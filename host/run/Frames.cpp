// SPDX-License-Identifier: Apache-2.0
#include "host/run/Frames.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

using Length = std::uint64_t;

void AppendLength(std::string& buffer, Length length) {
  buffer.append(reinterpret_cast<const char*>(&length), sizeof length);
}

Length LengthAt(const std::string& buffer, std::size_t offset) {
  Length length;
  std::memcpy(&length, buffer.data() + offset, sizeof length);
  return length;
}

}  // namespace

// Layout: size of what follows, number of fields, their lengths, their bytes.
void Frames::Append(std::string& buffer, std::initializer_list<std::string_view> fields) {
  Length size = sizeof(Length) * (1 + fields.size());
  for (const std::string_view field : fields) size += field.size();
  AppendLength(buffer, size);
  AppendLength(buffer, fields.size());
  for (const std::string_view field : fields) AppendLength(buffer, field.size());
  for (const std::string_view field : fields) buffer.append(field);
}

bool Frames::Reader::Fill(int descriptor) {
  buffer_.erase(0, begin_);
  begin_ = 0;
  char block[1 << 16];
  for (;;) {
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    buffer_.append(block, static_cast<std::size_t>(count));
    return true;
  }
}

bool Frames::Reader::Next(Fields& fields) {
  fields.clear();
  if (buffer_.size() - begin_ < sizeof(Length)) return false;
  const Length size = LengthAt(buffer_, begin_);
  std::size_t at = begin_ + sizeof(Length);
  if (buffer_.size() - at < size) return false;
  const Length count = LengthAt(buffer_, at);
  std::size_t bytes = at + sizeof(Length) * (1 + count);
  for (Length i = 0; i < count; ++i) {
    const Length length = LengthAt(buffer_, at + sizeof(Length) * (1 + i));
    fields.push_back(std::string_view(buffer_).substr(bytes, length));
    bytes += length;
  }
  begin_ = at + size;
  return true;
}
