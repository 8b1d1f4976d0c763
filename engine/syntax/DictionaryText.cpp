// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/DictionaryText.h"

#include <map>
#include <utility>

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfName.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

constexpr std::size_t kUsualEntries = 8;

}  // namespace

std::optional<DictionaryText> DictionaryText::Parse(std::string text) {
  if (text.compare(0, 2, "<<") != 0) return std::nullopt;
  try {
    return DictionaryText(std::move(text));
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

DictionaryText::DictionaryText(std::string text) : text_(std::move(text)) {
  PdfLexer lexer(text_);
  entries_.reserve(kUsualEntries);
  lexer.ReadEntries([&](const PdfLexer::Value& key, const PdfLexer::Value& value) {
    entries_.push_back({UnescapedName(lexer.Text(key)), key.begin, value.begin, value.end});
  });
  if (lexer.Position() != text_.size()) throw PdfSyntaxError();
  close_ = text_.size() - 2;
}

void DictionaryText::Replace(std::size_t begin, std::size_t end, std::string_view text) {
  text_.replace(begin, end - begin, text);
  const auto move = [&](std::size_t& position) {
    if (position >= end) position += begin + text.size() - end;
  };
  for (Entry& entry : entries_) {
    move(entry.keyBegin);
    move(entry.valueBegin);
    move(entry.end);
  }
  move(close_);
}

void DictionaryText::Erase(std::size_t index) {
  const Entry entry = entries_[index];
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
  Replace(entry.keyBegin, entry.end, "");
}

std::optional<std::string_view> DictionaryText::Find(std::string_view key) const {
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
    if (entry->key == key) return ValueOf(*entry);
  }
  return std::nullopt;
}

void DictionaryText::Set(std::string_view key, std::string_view value) {
  bool found = false;
  for (std::size_t i = entries_.size(); i-- > 0;) {
    const Entry& entry = entries_[i];
    if (entry.key != key) continue;
    if (found) {
      Erase(i);
      continue;
    }
    found = true;
    // "/Key/Name" has no space, which a number in place of the name would need.
    const bool apart = PdfLexer::IsSpace(text_[entry.valueBegin - 1]) || PdfLexer::IsDelimiter(value.front());
    if (!apart) Replace(entry.valueBegin, entry.valueBegin, " ");
    Replace(entry.valueBegin, entry.end, value);
  }
  if (found) return;
  const std::string name = EscapedName(key) + ' ';
  text_.insert(close_, value).insert(close_, name);
  const std::size_t begin = std::exchange(close_, close_ + name.size() + value.size());
  entries_.push_back({std::string(key), begin, begin + name.size(), close_});
}

void DictionaryText::Remove(std::string_view key) {
  for (std::size_t i = entries_.size(); i-- > 0;) {
    if (entries_[i].key == key) Erase(i);
  }
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
