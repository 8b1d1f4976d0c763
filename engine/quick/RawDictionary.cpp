// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/RawDictionary.h"

#include "engine/quick/PdfSyntaxError.h"

namespace engine {

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
    if (key.kind != PdfLexer::Kind::kName || name.find('#') != std::string_view::npos || Find(name) != nullptr) {
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

}  // namespace engine
