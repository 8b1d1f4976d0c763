// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// One character's UTF-8 form (RFC 3629), for code without Qt on either side of the library's functions.
namespace Utf8 {

// `character` is at most U+10FFFF; surrogates get the three bytes that their numbers give.
inline void Append(std::string& bytes, char32_t character) {
  const auto put = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
  const auto putTail = [put](char32_t bits) { put(0x80 | (bits & 0x3F)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | character >> 6);
  } else {
    if (character < 0x10000) {
      put(0xE0 | character >> 12);
    } else {
      put(0xF0 | character >> 18);
      putTail(character >> 12);
    }
    putTail(character >> 6);
  }
  putTail(character);
}

struct Decoded {
  char32_t character;
  std::size_t length;  // in bytes; 0 when there is no well-formed character
};

// The character at the start of `bytes`, which must not be empty.
inline Decoded Decode(std::string_view bytes) {
  const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const char32_t lead = at(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {0, 0};
  char32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return {0, 0};
    character = character << 6 | (at(i) & 0x3FU);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  return character < kSmallest[length] || surrogate || character > 0x10FFFF ? Decoded{0, 0}
                                                                            : Decoded{character, length};
}

// How many characters of the text, from its start on, are ASCII.
template <typename Text>
std::size_t AsciiPrefix(const Text& text) {
  std::size_t count = 0;
  while (count < text.size() && static_cast<char32_t>(text[count]) < 0x80) ++count;
  return count;
}

}  // namespace Utf8
