// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/RawDictionary.h"

#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// Far more than catalogs and trailers have; keeps the search for a key that stands twice cheap.
constexpr std::size_t kMostEntries = 1000;

}  // namespace

RawDictionary::RawDictionary(std::string_view text) : text_(text) {
  if (text.size() < 2) throw PdfSyntaxError(true);
  if (text.compare(0, 2, "<<") != 0) throw PdfSyntaxError();
  PdfLexer lexer(text, 2);
  for (;;) {
    lexer.SkipSpace();
    if (text.size() - lexer.Position() < 2) throw PdfSyntaxError(true);
    if (text.compare(lexer.Position(), 2, ">>") == 0) break;
    const PdfLexer::Value key = lexer.ReadValue();
    const std::string_view name = lexer.Text(key);
    if (key.kind != PdfLexer::Kind::kName || name.find('#') != std::string_view::npos || Find(name) != nullptr ||
        entries_.size() >= kMostEntries) {
      throw PdfSyntaxError();
    }
    entries_.push_back({name, key.begin, lexer.ReadValue()});
  }
  end_ = lexer.Position() + 2;
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
