// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

// A dictionary object's text that can be changed; the rest keeps its bytes. Unlike RawDictionary it accepts keys
// written with "#", and a key that occurs twice, of which the last value counts, as in full parsers.
//
// Keys are given with their slash and without "#" escapes. Values are texts of objects.
class DictionaryText {
 public:
  // No value for a text that is not a dictionary and nothing else.
  static std::optional<DictionaryText> Parse(std::string text);
  // Throws PdfSyntaxError for such a text.
  explicit DictionaryText(std::string text = "<<>>");

  const std::string& Text() const { return text_; }
  bool Empty() const { return entries_.empty(); }
  // Valid until the dictionary is changed.
  std::optional<std::string_view> Find(std::string_view key) const;
  void Set(std::string_view key, std::string_view value);
  void Remove(std::string_view key);
  // Whether the other one has the same keys with the same texts, in any order.
  bool SameEntries(const DictionaryText& other) const;

 private:
  struct Entry {
    std::string key;  // without escapes
    std::size_t keyBegin;
    std::size_t valueBegin;
    std::size_t end;
  };

  // Replaces a part of the text and moves the entries after it.
  void Replace(std::size_t begin, std::size_t end, std::string_view text);
  void Erase(std::size_t index);
  std::string_view ValueOf(const Entry& entry) const {
    return std::string_view(text_).substr(entry.valueBegin, entry.end - entry.valueBegin);
  }

  std::string text_;
  std::vector<Entry> entries_;
  std::size_t close_ = 0;  // the position of ">>"
};

}  // namespace engine
