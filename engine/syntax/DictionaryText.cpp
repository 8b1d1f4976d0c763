// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/DictionaryText.h"

#include <map>
#include <utility>

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfName.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

std::optional<DictionaryText> DictionaryText::Parse(std::string text) {
  try {
    return DictionaryText(std::move(text));
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

DictionaryText::DictionaryText(std::string text) : text_(std::move(text)) {
  Index();
}

void DictionaryText::Index() {
  entries_.clear();
  if (text_.compare(0, 2, "<<") != 0) throw PdfSyntaxError();
  PdfLexer lexer(text_, 2);
  for (;;) {
    lexer.SkipSpace();
    if (text_.compare(lexer.Position(), 2, ">>") == 0) break;
    const PdfLexer::Value key = lexer.ReadValue();
    if (key.kind != PdfLexer::Kind::kName) throw PdfSyntaxError();
    const PdfLexer::Value value = lexer.ReadValue();
    entries_.push_back({UnescapedName(lexer.Text(key)), key.begin, value.begin, value.end});
  }
  close_ = lexer.Position();
  if (close_ + 2 != text_.size()) throw PdfSyntaxError();
}

std::optional<std::string_view> DictionaryText::Find(const std::string& key) const {
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
    if (entry->key == key) return ValueOf(*entry);
  }
  return std::nullopt;
}

void DictionaryText::Set(const std::string& key, const std::string& value) {
  bool found = false;
  for (std::size_t i = entries_.size(); i-- > 0;) {
    const Entry& entry = entries_[i];
    if (entry.key != key) continue;
    if (found) {
      text_.erase(entry.keyBegin, entry.end - entry.keyBegin);
    } else {
      // "/Key/Name" has no space that could part the key from a number.
      const bool apart = PdfLexer::IsSpace(text_[entry.valueBegin - 1]) || PdfLexer::IsDelimiter(value.front());
      text_.replace(entry.valueBegin, entry.end - entry.valueBegin, apart ? value : ' ' + value);
    }
    found = true;
  }
  if (!found) text_.insert(close_, EscapedName(key) + ' ' + value);
  Index();
}

void DictionaryText::Remove(const std::string& key) {
  for (std::size_t i = entries_.size(); i-- > 0;) {
    const Entry& entry = entries_[i];
    if (entry.key == key) text_.erase(entry.keyBegin, entry.end - entry.keyBegin);
  }
  Index();
}

bool DictionaryText::SameEntries(const DictionaryText& other) const {
  const auto values = [](const DictionaryText& dictionary) {
    std::map<std::string_view, std::string_view> result;
    for (const Entry& entry : dictionary.entries_) result[entry.key] = dictionary.ValueOf(entry);
    return result;
  };
  return text_ == other.text_ || values(*this) == values(other);
}

}  // namespace engine
