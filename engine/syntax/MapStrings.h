// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace engine {

// The object's text with other strings: `map` gets the bytes of each string and returns the text of the string object
// in its place. A signature's /Contents is left out, as encryption does (ISO 32000-1, 7.6.1). Every other byte is kept.
// Throws PdfSyntaxError.
std::string MapStrings(std::string_view text, const std::function<std::string(const std::string& bytes)>& map);

}  // namespace engine
