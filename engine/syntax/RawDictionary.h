// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/syntax/PdfLexer.h"

namespace engine {

// The entries of a dictionary object as they are in its text, which must outlive this object unless it is Kept().
class RawDictionary {
 public:
  struct Entry {
    std::string_view key;  // with its slash
    PdfLexer::Value value;
  };

  // `text` starts with "<<"; what follows the dictionary is left alone. Throws PdfSyntaxError, also for a
  // key that occurs twice or is written with "#": readers differ there.
  explicit RawDictionary(std::string_view text);
  // The same dictionary with a text of its own.
  RawDictionary Kept() const;

  // "<<" to ">>".
  std::string_view Text() const { return text_; }
  const std::vector<Entry>& Entries() const { return entries_; }
  const Entry* Find(std::string_view key) const;
  bool Has(std::string_view key) const { return Find(key) != nullptr; }
  std::string_view Text(const Entry& entry) const {
    return text_.substr(entry.value.begin, entry.value.end - entry.value.begin);
  }
  // The value of an entry that must be there.
  std::string_view Text(std::string_view key) const;
  std::uint64_t Unsigned(std::string_view key) const { return PdfLexer::ToUnsigned(Text(key)); }
  ObjectId Reference(std::string_view key) const { return PdfLexer::ToReference(Text(key)); }

 private:
  RawDictionary() = default;

  std::unique_ptr<const std::string> kept_;
  std::string_view text_;
  std::vector<Entry> entries_;
};

}  // namespace engine
