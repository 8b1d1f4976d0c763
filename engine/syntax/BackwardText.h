// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "engine/syntax/PdfLexer.h"

namespace engine {

// Takes the digits at the end of the text away, and returns them.
inline std::string_view TakeDigits(std::string_view& text) {
  std::size_t begin = text.size();
  while (begin > 0 && PdfLexer::IsDigit(text[begin - 1])) --begin;
  const std::string_view digits = text.substr(begin);
  text.remove_suffix(digits.size());
  return digits;
}

// Takes the white space at the end of the text away. Returns whether there was any.
inline bool TakeSpaces(std::string_view& text) {
  const std::size_t before = text.size();
  while (!text.empty() && PdfLexer::IsSpace(text.back())) text.remove_suffix(1);
  return text.size() < before;
}

}  // namespace engine
