// SPDX-License-Identifier: Apache-2.0
#include "engine/links/LocatedValue.h"

#include <utility>

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

constexpr int kMostReferences = 8;

}  // namespace

LocatedValue LoadObject(ObjectTexts& objects, ObjectId id) {
  std::string text;
  for (int i = 0; i < kMostReferences; ++i) {
    text = objects.Text(id);
    if (!IsReference(text)) return {id, {}, std::move(text)};
    try {
      id = PdfLexer::ToReference(text);
    } catch (const PdfSyntaxError&) {
      break;
    }
  }
  return {id, {}, "null"};
}

LocatedValue Resolve(ObjectTexts& objects, const LocatedValue& parent, std::string_view value, std::string_view step) {
  if (IsReference(value)) {
    try {
      return LoadObject(objects, PdfLexer::ToReference(value));
    } catch (const PdfSyntaxError&) {
      value = "null";
    }
  }
  LocatedValue result{parent.holder, parent.path, std::string(value)};
  result.path += step;
  return result;
}

LocatedValue Entry(ObjectTexts& objects, const LocatedValue& dictionary, std::string_view key) {
  return Entry(objects, dictionary, DictionaryView(dictionary.text), key);
}

LocatedValue Entry(ObjectTexts& objects, const LocatedValue& dictionary, const DictionaryView& entries,
                   std::string_view key) {
  const std::string_view value = entries.Find(key);
  return Resolve(objects, dictionary, value.empty() ? "null" : value, key);
}

std::string ElementStep(std::size_t index) {
  return '[' + std::to_string(index) + ']';
}

}  // namespace engine
