// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace engine {

// The entries of a dictionary object's text, which must outlive this object. If a key occurs twice, the last value
// counts, as in full parsers. Of broken syntax, the entries before the error are read. Empty for another kind of
// object.
class DictionaryView {
 public:
  struct Entry {
    std::string_view key;  // with its slash, as written
    std::string_view value;
  };

  explicit DictionaryView(std::string_view text);

  const std::vector<Entry>& Entries() const { return entries_; }
  // Empty when there is no such entry. `key` has its slash and no "#" escapes.
  std::string_view Find(std::string_view key) const;

 private:
  std::vector<Entry> entries_;
};

// The elements of an array object's text; of broken syntax, those before the error. Empty for another kind of object.
std::vector<std::string_view> ArrayElements(std::string_view text);

// What a value is, by how it begins.
bool IsDictionary(std::string_view value);
bool IsArray(std::string_view value);
bool IsString(std::string_view value);
bool IsReference(std::string_view value);
// The bytes of a string; empty for anything else.
std::string StringBytes(std::string_view value);
// A name without slash and "#" escapes; empty for anything else.
std::string NameText(std::string_view value);

}  // namespace engine
