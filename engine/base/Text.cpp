// SPDX-License-Identifier: Apache-2.0
#include "engine/base/Text.h"

#include <algorithm>
#include <cstdint>

#include "pdflib/Utf8.h"

namespace engine {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstRawByte = 0xDC80;  // the unit of the byte 0x80
constexpr std::uint32_t kLastRawByte = 0xDCFF;

bool IsCharacter(std::uint32_t unit) {
  return unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF);
}
void AppendCharacter(std::string& bytes, std::uint32_t unit) {
  Utf8::Append(bytes, IsCharacter(unit) ? unit : kReplacement);
}

// The ASCII characters at the start of the text; most texts have no others.
std::string PlainStart(std::wstring_view text) {
  return std::string(text.begin(), text.begin() + Utf8::AsciiPrefix(text));
}

// `malformed` maps each byte that is not UTF-8 to a unit.
template <typename Malformed>
std::wstring Decode(std::string_view bytes, Malformed malformed) {
  const std::size_t plain = Utf8::AsciiPrefix(bytes);
  std::wstring text(bytes.begin(), bytes.begin() + plain);
  bytes.remove_prefix(plain);
  while (!bytes.empty()) {
    const Utf8::Decoded next = Utf8::Decode(bytes);
    text.push_back(
        static_cast<wchar_t>(next.length > 0 ? next.character : malformed(static_cast<unsigned char>(bytes[0]))));
    bytes.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
  return text;
}

bool IsUtf8(std::string_view bytes) {
  bytes.remove_prefix(Utf8::AsciiPrefix(bytes));
  while (!bytes.empty()) {
    const std::size_t length = Utf8::Decode(bytes).length;
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
  std::string bytes = PlainStart(text);
  for (const wchar_t unit : text.substr(bytes.size())) AppendCharacter(bytes, CharacterOf(unit));
  return bytes;
}

std::wstring WideFromUtf8(std::string_view bytes) {
  return Decode(bytes, [](unsigned char) { return kReplacement; });
}

std::string RawFromWide(std::wstring_view text) {
  std::string bytes = PlainStart(text);
  for (const wchar_t unit : text.substr(bytes.size())) {
    const std::uint32_t character = CharacterOf(unit);
    if (character >= kFirstRawByte && character <= kLastRawByte) {
      bytes += static_cast<char>(character - kFirstRawByte + 0x80);
    } else {
      AppendCharacter(bytes, character);
    }
  }
  return bytes;
}

std::wstring WideFromRaw(std::string_view bytes) {
  return Decode(bytes, [](unsigned char byte) { return byte - 0x80 + kFirstRawByte; });
}

std::string UrlFromWide(std::wstring_view url) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string bytes = PlainStart(url);
  std::string encoded;
  for (const wchar_t unit : url.substr(bytes.size())) {
    const std::uint32_t character = CharacterOf(unit);
    if (character < 0x80) {
      bytes.push_back(static_cast<char>(character));
      continue;
    }
    encoded.clear();
    AppendCharacter(encoded, character);
    for (const char byte : encoded) {
      bytes.push_back('%');
      bytes.push_back(kDigits[static_cast<unsigned char>(byte) >> 4]);
      bytes.push_back(kDigits[byte & 0xF]);
    }
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
