// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Records in a byte stream: each a list of byte strings, stored as lengths and bytes in the machine's own byte order.
namespace RecordFraming {

using Fields = std::vector<std::string_view>;

void Append(std::string& buffer, const Fields& fields);
// Makes a record of these fields and, after them, of what `last` holds, in its place: a long field is not copied.
void Wrap(std::string& last, Fields before);
// The fields of a buffer that holds one whole record; they point into it.
Fields Parse(std::string_view buffer);

// Takes records out of a descriptor's byte stream.
class Reader {
 public:
  // Reads what is there (blocking if the descriptor is); false at the end of the stream or on an error.
  bool Fill(int descriptor);
  // Takes the next whole record; its fields stay valid until the next Fill. False when there is none.
  bool Next(Fields& fields);

 private:
  // All that fits into a pipe: less at a time would hold up its writer.
  static constexpr std::size_t kPipeSize = 64 * 1024;

  std::vector<char> block_ = std::vector<char>(kPipeSize);
  std::string buffer_;
  std::size_t begin_ = 0;
};

}  // namespace RecordFraming
