// SPDX-License-Identifier: Apache-2.0
#include "engine/base/Text.h"

#include <algorithm>
#include <cstdint>

namespace engine {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstRawByte = 0xDC80;  // stands for the byte 0x80
constexpr std::uint32_t kLastRawByte = 0xDCFF;

std::uint32_t CharacterOf(wchar_t unit) {
  // NOLINTNEXTLINE(bugprone-signed-char-misuse): units are 32 bits wide, so nothing is extended.
  return static_cast<std::uint32_t>(unit);
}
bool IsCharacter(std::uint32_t unit) {
  return unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF);
}
bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// Calls `put` with each byte of the character's UTF-8 form.
template <typename Put>
void ForEachUtf8Byte(std::uint32_t character, Put put) {
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | character >> 6);
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | character >> 12);
    put(0x80 | (character >> 6 & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | character >> 18);
    put(0x80 | (character >> 12 & 0x3F));
    put(0x80 | (character >> 6 & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

// The character at the start of `bytes`, which are not empty, and how many bytes it takes; 0 for malformed ones.
struct Decoded {
  std::uint32_t character;
  std::size_t length;
};
Decoded DecodeUtf8(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const std::uint32_t lead = at(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {0, 0};
  std::uint32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(at(i))) return {0, 0};
    character = character << 6 | (at(i) & 0x3FU);
  }
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  return character >= kSmallest[length] && IsCharacter(character) ? Decoded{character, length} : Decoded{0, 0};
}

// `malformed` maps each byte that is no UTF-8 to a unit.
template <typename Malformed>
std::wstring Decode(std::string_view bytes, Malformed malformed) {
  std::wstring text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Decoded next = DecodeUtf8(bytes);
    text.push_back(
        static_cast<wchar_t>(next.length > 0 ? next.character : malformed(static_cast<unsigned char>(bytes[0]))));
    bytes.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
  return text;
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = DecodeUtf8(bytes).length;
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::wstring WideFromUtf16BigEndian(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size() / 2);
  const auto unitAt = [&](std::size_t i) -> std::uint32_t {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i]) << 8 |
                                      static_cast<unsigned char>(bytes[i + 1]));
  };
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    std::uint32_t unit = unitAt(i);
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 3 < bytes.size()) {
      const std::uint32_t low = unitAt(i + 2);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    text.push_back(static_cast<wchar_t>(IsCharacter(unit) ? unit : kReplacement));
  }
  return text;
}

bool StartsWith(std::string_view bytes, std::string_view start) {
  return bytes.substr(0, start.size()) == start;
}

}  // namespace

std::string Utf8FromWide(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const wchar_t unit : text) {
    const std::uint32_t character = CharacterOf(unit);
    ForEachUtf8Byte(IsCharacter(character) ? character : kReplacement,
                    [&](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); });
  }
  return bytes;
}

std::wstring WideFromUtf8(std::string_view bytes) {
  return Decode(bytes, [](unsigned char) { return kReplacement; });
}

std::string RawFromWide(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  const auto put = [&](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
  for (const wchar_t unit : text) {
    const std::uint32_t character = CharacterOf(unit);
    if (character >= kFirstRawByte && character <= kLastRawByte) {
      put(character - kFirstRawByte + 0x80);
    } else {
      ForEachUtf8Byte(IsCharacter(character) ? character : kReplacement, put);
    }
  }
  return bytes;
}

std::wstring WideFromRaw(std::string_view bytes) {
  return Decode(bytes, [](unsigned char byte) { return byte - 0x80 + kFirstRawByte; });
}

std::string UrlFromWide(std::wstring_view url) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string bytes;
  bytes.reserve(url.size());
  for (const wchar_t unit : url) {
    const std::uint32_t character = CharacterOf(unit);
    if (character < 0x80) {
      bytes.push_back(static_cast<char>(character));
      continue;
    }
    ForEachUtf8Byte(IsCharacter(character) ? character : kReplacement, [&](std::uint32_t byte) {
      bytes.push_back('%');
      bytes.push_back(kDigits[byte >> 4 & 0xF]);
      bytes.push_back(kDigits[byte & 0xF]);
    });
  }
  return bytes;
}

std::wstring WideFromUrl(std::string_view bytes) {
  if (StartsWith(bytes, "\xFE\xFF")) return WideFromUtf16BigEndian(bytes.substr(2));
  if (StartsWith(bytes, "\xEF\xBB\xBF")) return WideFromUtf8(bytes.substr(3));
  if (IsUtf8(bytes)) return WideFromUtf8(bytes);
  std::wstring text(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(),
                 [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
  return text;
}

}  // namespace engine
