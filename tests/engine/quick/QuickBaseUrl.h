// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "engine/quick/QuickDocument.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/PdfLexer.h"

// The base URL in a catalog that the quick reader has read; empty when there is none, no value when an object of its
// own holds a part of it.
inline std::optional<std::string> QuickBaseUrl(const engine::QuickDocument& document) {
  std::string text = document.catalog;
  for (const char* const key : {"/URI", "/Base"}) {
    const auto dictionary = engine::DictionaryText::Parse(text);
    text = dictionary ? std::string(dictionary->Find(key).value_or("")) : std::string();
    if (engine::PdfLexer::FindReference(text)) return std::nullopt;
  }
  const bool isString = !text.empty() && (text[0] == '(' || (text[0] == '<' && text.compare(0, 2, "<<") != 0));
  return isString ? engine::PdfLexer::ToBytes(text) : std::string();
}
