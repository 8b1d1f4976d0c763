// SPDX-License-Identifier: Apache-2.0
#include "engine/links/DictionaryView.h"

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfName.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

bool IsKey(std::string_view written, std::string_view key) {
  return written == key || (written.find('#') != std::string_view::npos && UnescapedName(written) == key);
}

}  // namespace

DictionaryView::DictionaryView(std::string_view text) {
  if (!IsDictionary(text)) return;
  entries_.reserve(12);
  try {
    PdfLexer lexer(text, 2);
    for (lexer.SkipSpace(); text.compare(lexer.Position(), 2, ">>") != 0; lexer.SkipSpace()) {
      const PdfLexer::Value key = lexer.ReadValue();
      // A value without a key is skipped.
      if (key.kind != PdfLexer::Kind::kName) continue;
      lexer.SkipSpace();
      if (text.compare(lexer.Position(), 2, ">>") == 0) break;
      entries_.push_back({lexer.Text(key), lexer.Text(lexer.ReadValue())});
    }
  } catch (const PdfSyntaxError&) {
    // Broken from here on.
  }
}

std::string_view DictionaryView::Find(std::string_view key) const {
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
    if (IsKey(entry->key, key)) return entry->value;
  }
  return {};
}

std::vector<std::string_view> ArrayElements(std::string_view text) {
  std::vector<std::string_view> elements;
  if (!IsArray(text)) return elements;
  try {
    PdfLexer lexer(text, 1);
    for (lexer.SkipSpace(); text.compare(lexer.Position(), 1, "]") != 0; lexer.SkipSpace()) {
      elements.push_back(lexer.Text(lexer.ReadValue()));
    }
  } catch (const PdfSyntaxError&) {
    // Broken from here on.
  }
  return elements;
}

bool IsDictionary(std::string_view value) {
  return value.substr(0, 2) == "<<";
}

bool IsArray(std::string_view value) {
  return !value.empty() && value.front() == '[';
}

bool IsString(std::string_view value) {
  return !value.empty() && (value.front() == '(' || (value.front() == '<' && !IsDictionary(value)));
}

bool IsReference(std::string_view value) {
  return !value.empty() && value.back() == 'R' && value.front() >= '0' && value.front() <= '9';
}

std::string StringBytes(std::string_view value) {
  return IsString(value) ? PdfLexer::ToBytes(value) : std::string();
}

std::string NameText(std::string_view value) {
  return !value.empty() && value.front() == '/' ? UnescapedName(value).substr(1) : std::string();
}

}  // namespace engine
