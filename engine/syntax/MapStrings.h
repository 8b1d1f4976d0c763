// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace engine {

// The object's text with every string that an encrypted file encrypts (all but a signature's /Contents; ISO 32000-1,
// 7.6.1) given to `map` as its bytes, and what that returns, a string object's text, in its place. Every other byte is
// kept. Throws PdfSyntaxError.
std::string MapStrings(std::string_view text, const std::function<std::string(const std::string& bytes)>& map);

}  // namespace engine
