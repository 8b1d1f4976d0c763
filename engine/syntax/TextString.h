// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Text strings (ISO 32000-1, 7.9.2.2): PDFDocEncoding, or UTF-16 or UTF-8 after a byte order mark.
namespace engine {

// UTF-8; codes and units that are not characters become U+FFFD.
std::string Utf8FromTextString(const std::string& bytes);
// The text of a URL in a string. The standard asks for ASCII (ISO 32000-1, 12.6.4.7); others are read as UTF-16 or
// UTF-8 when they have their byte order mark, as UTF-8 when they are well-formed, and otherwise as PDFDocEncoding.
std::wstring WideFromUrlString(const std::string& bytes);
// PDFDocEncoding if it has every character of the text, otherwise UTF-16 with its byte order mark.
std::string TextStringFromUtf8(const std::string& utf8);

}  // namespace engine
