// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/TextString.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/base/Text.h"

namespace engine {

namespace {

constexpr char16_t kUndefined = 0xFFFD;
// PDFDocEncoding where it differs from Latin 1 (ISO 32000-1, annex D.3): the codes from kFirstLow and from kFirstHigh.
constexpr unsigned char kFirstLow = 0x18;
constexpr unsigned char kFirstHigh = 0x7F;
constexpr char16_t kLow[] = {0x02D8, 0x02C7, 0x02C6, 0x02D9, 0x02DD, 0x02DB, 0x02DA, 0x02DC};
constexpr char16_t kHigh[] = {kUndefined, 0x2022, 0x2020, 0x2021, 0x2026, 0x2014,     0x2013, 0x0192, 0x2044,
                              0x2039,     0x203A, 0x2212, 0x2030, 0x201E, 0x201C,     0x201D, 0x2018, 0x2019,
                              0x201A,     0x2122, 0xFB01, 0xFB02, 0x0141, 0x0152,     0x0160, 0x0178, 0x017D,
                              0x0131,     0x0142, 0x0153, 0x0161, 0x017E, kUndefined, 0x20AC};
constexpr unsigned char kSoftHyphen = 0xAD;  // undefined as well

template <std::size_t N>
std::optional<char16_t> InTable(const char16_t (&table)[N], unsigned char first, unsigned char code) {
  if (code < first || code >= first + N) return std::nullopt;
  return table[code - first];
}

char16_t FromPdfDoc(unsigned char code) {
  if (const auto low = InTable(kLow, kFirstLow, code)) return *low;
  if (const auto high = InTable(kHigh, kFirstHigh, code)) return *high;
  return code == kSoftHyphen ? kUndefined : code;
}

// The code of a character; no value when the encoding does not have it.
std::optional<char> CodeOf(std::uint32_t character) {
  if (character == kUndefined || character > 0xFFFF) return std::nullopt;
  const auto in = [&](const auto& table, unsigned char first) -> std::optional<char> {
    const auto* const found = std::find(std::begin(table), std::end(table), static_cast<char16_t>(character));
    if (found == std::end(table)) return std::nullopt;
    return static_cast<char>(first + (found - std::begin(table)));
  };
  if (const auto low = in(kLow, kFirstLow)) return low;
  if (const auto high = in(kHigh, kFirstHigh)) return high;
  if (character > 0xFF || FromPdfDoc(static_cast<unsigned char>(character)) != character) return std::nullopt;
  return static_cast<char>(character);
}

bool HasByteOrderMark(std::string_view bytes) {
  return bytes.substr(0, 2) == "\xFE\xFF" || bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 3) == "\xEF\xBB\xBF";
}

void AppendUnit(std::string& bytes, std::uint32_t unit) {
  bytes += static_cast<char>(unit >> 8);
  bytes += static_cast<char>(unit & 0xFF);
}

std::string Utf16FromWide(const std::wstring& text) {
  std::string bytes = "\xFE\xFF";
  for (const wchar_t wide : text) {
    const std::uint32_t character = CharacterOf(wide);
    if (character < 0x10000) {
      AppendUnit(bytes, character);
    } else {
      AppendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10));
      AppendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF));
    }
  }
  return bytes;
}

// Text after a byte order mark.
std::wstring WideFromMarked(std::string bytes) {
  if (bytes[0] == '\xFF') {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  }
  return WideFromUrl(bytes);
}

std::wstring WideFromPdfDocEncoding(const std::string& bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += static_cast<wchar_t>(FromPdfDoc(static_cast<unsigned char>(byte)));
  return text;
}

}  // namespace

std::string Utf8FromTextString(const std::string& bytes) {
  return Utf8FromWide(HasByteOrderMark(bytes) ? WideFromMarked(bytes) : WideFromPdfDocEncoding(bytes));
}

std::wstring WideFromUrlString(const std::string& bytes) {
  if (HasByteOrderMark(bytes)) return WideFromMarked(bytes);
  std::wstring text = WideFromUtf8(bytes);
  return Utf8FromWide(text) == bytes ? text : WideFromPdfDocEncoding(bytes);
}

std::string TextStringFromUtf8(const std::string& utf8) {
  const std::wstring text = WideFromUtf8(utf8);
  std::string bytes;
  bytes.reserve(text.size());
  for (const wchar_t unit : text) {
    const std::optional<char> code = CodeOf(CharacterOf(unit));
    if (!code) return Utf16FromWide(text);
    bytes += *code;
  }
  // Readers would take these first characters for a byte order mark.
  return HasByteOrderMark(bytes) ? Utf16FromWide(text) : bytes;
}

}  // namespace engine
