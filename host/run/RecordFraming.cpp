// SPDX-License-Identifier: Apache-2.0
#include "host/run/RecordFraming.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

using Length = std::uint64_t;

void AppendLength(std::string& buffer, Length length) {
  buffer.append(reinterpret_cast<const char*>(&length), sizeof length);
}

Length LengthAt(std::string_view buffer, std::size_t offset) {
  Length length;
  std::memcpy(&length, buffer.data() + offset, sizeof length);
  return length;
}

// Layout: size of what follows, number of fields, their lengths, their bytes. `record` begins with the second.
void Split(std::string_view record, RecordFraming::Fields& fields) {
  const Length count = LengthAt(record, 0);
  fields.reserve(count);
  std::size_t bytes = sizeof(Length) * (1 + count);
  for (Length i = 0; i < count; ++i) {
    const Length length = LengthAt(record, sizeof(Length) * (1 + i));
    fields.push_back(record.substr(bytes, length));
    bytes += length;
  }
}

void AppendHead(std::string& buffer, const RecordFraming::Fields& fields) {
  Length size = sizeof(Length) * (1 + fields.size());
  for (const std::string_view field : fields) size += field.size();
  buffer.reserve(buffer.size() + sizeof(Length) + size);
  AppendLength(buffer, size);
  AppendLength(buffer, fields.size());
  for (const std::string_view field : fields) AppendLength(buffer, field.size());
}

}  // namespace

void RecordFraming::Append(std::string& buffer, const Fields& fields) {
  AppendHead(buffer, fields);
  for (const std::string_view field : fields) buffer.append(field);
}

void RecordFraming::Wrap(std::string& last, Fields before) {
  before.push_back(last);
  std::string start;
  AppendHead(start, before);
  before.pop_back();
  for (const std::string_view field : before) start.append(field);
  last.insert(0, start);
}

RecordFraming::Fields RecordFraming::Parse(std::string_view buffer) {
  Fields fields;
  Split(buffer.substr(sizeof(Length)), fields);
  return fields;
}

bool RecordFraming::Reader::Fill(int descriptor) {
  buffer_.erase(0, begin_);
  begin_ = 0;
  for (;;) {
    const ssize_t count = read(descriptor, block_.data(), block_.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    buffer_.append(block_.data(), static_cast<std::size_t>(count));
    return true;
  }
}

bool RecordFraming::Reader::Next(Fields& fields) {
  fields.clear();
  if (buffer_.size() - begin_ < sizeof(Length)) return false;
  const Length size = LengthAt(buffer_, begin_);
  const std::size_t at = begin_ + sizeof(Length);
  if (buffer_.size() - at < size) return false;
  Split(std::string_view(buffer_).substr(at, size), fields);
  begin_ = at + size;
  return true;
}
