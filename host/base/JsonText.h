// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

// JSON strings (RFC 8259, section 7) of texts that need not be well-formed. Qt's writer would replace a lone surrogate
// by "?", so that the file name would be lost.
namespace JsonText {

// Appends the text in quotes. A unit that is a surrogate is written as \udXXX.
void Append(std::string& json, const std::wstring& text);
// The same for bytes that are UTF-8; a byte that is not becomes the escape \udcXX, as NativeName decodes it.
void AppendBytes(std::string& json, std::string_view bytes);
std::string OfBytes(std::string_view bytes);

}  // namespace JsonText
