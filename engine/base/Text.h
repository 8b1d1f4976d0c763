// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Conversions between the library's wide texts, one 32-bit unit a character, and the bytes that files hold. All of them
// take time in proportion to the text.
namespace engine {

// The number of a unit of a wide text.
inline std::uint32_t CharacterOf(wchar_t unit) {
  // NOLINTNEXTLINE(bugprone-signed-char-misuse): units are 32 bits wide, so nothing is extended.
  return static_cast<std::uint32_t>(unit);
}

// UTF-8; units that are not characters (surrogates, above U+10FFFF) become U+FFFD.
std::string Utf8FromWide(std::wstring_view text);
// Bytes that are not UTF-8 become U+FFFD.
std::wstring WideFromUtf8(std::string_view bytes);

// File names and passwords may hold any bytes: the bytes 0x80 to 0xFF outside well-formed UTF-8 are the units U+DC80 to
// U+DCFF, in both directions.
std::string RawFromWide(std::wstring_view text);
std::wstring WideFromRaw(std::string_view bytes);

// A base URL as it is in a PDF file: characters outside ASCII percent-encoded as UTF-8 (RFC 3986, 2.1), the others as
// they are.
std::string UrlFromWide(std::wstring_view url);
// The text of a base URL in a file. One that is not ASCII, against the standard, is read as UTF-16 or UTF-8 when it has
// their byte order mark, as UTF-8 when it is well-formed, and otherwise byte by byte.
std::wstring WideFromUrl(std::string_view bytes);

}  // namespace engine
