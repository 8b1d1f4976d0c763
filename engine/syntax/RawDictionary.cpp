// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/RawDictionary.h"

#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// Far more than catalogs and trailers have; bounds the search for a key that occurs twice.
constexpr std::size_t kMostEntries = 1000;
constexpr std::size_t kUsualEntries = 8;

}  // namespace

RawDictionary::RawDictionary(std::string_view text) {
  PdfLexer lexer(text);
  entries_.reserve(kUsualEntries);
  lexer.ReadEntries([&](const PdfLexer::Value& key, const PdfLexer::Value& value) {
    const std::string_view name = lexer.Text(key);
    if (name.find('#') != std::string_view::npos || Has(name) || entries_.size() >= kMostEntries) {
      throw PdfSyntaxError();
    }
    entries_.push_back({name, value});
  });
  text_ = text.substr(0, lexer.Position());
}

RawDictionary RawDictionary::Kept() const {
  RawDictionary kept;
  kept.kept_ = std::make_unique<const std::string>(text_);
  kept.text_ = *kept.kept_;
  kept.entries_ = entries_;
  for (Entry& entry : kept.entries_) {
    entry.key = kept.text_.substr(static_cast<std::size_t>(entry.key.data() - text_.data()), entry.key.size());
  }
  return kept;
}

const RawDictionary::Entry* RawDictionary::Find(std::string_view key) const {
  for (const Entry& entry : entries_) {
    if (entry.key == key) return &entry;
  }
  return nullptr;
}

std::string_view RawDictionary::Text(std::string_view key) const {
  const Entry* entry = Find(key);
  if (entry == nullptr) throw PdfSyntaxError();
  return Text(*entry);
}

}  // namespace engine
