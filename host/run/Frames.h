// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// Messages between the main process and its workers: each a list of byte strings, sent as lengths and bytes.
namespace Frames {

using Fields = std::vector<std::string_view>;

void Append(std::string& buffer, std::initializer_list<std::string_view> fields);

// Takes messages out of a descriptor's byte stream.
class Reader {
 public:
  // Reads what is there (blocking if the descriptor is); false at the end of the stream or on an error.
  bool Fill(int descriptor);
  // Takes the next whole message; its fields stay valid until the next Fill. False when there is none.
  bool Next(Fields& fields);

 private:
  std::string buffer_;
  std::size_t begin_ = 0;
};

}  // namespace Frames
