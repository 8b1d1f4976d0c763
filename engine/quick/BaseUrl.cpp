// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/BaseUrl.h"

#include <string_view>

#include "engine/syntax/LiteralString.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

constexpr std::string_view kUri = "/URI";
constexpr std::string_view kBase = "/Base";

// The dictionary with `value` (an object's text) under `key`, which need not be there yet.
std::string With(std::string_view text, const RawDictionary& dictionary, std::string_view key,
                 const std::string& value) {
  std::string result(text);
  if (const RawDictionary::Entry* entry = dictionary.Find(key)) {
    return result.replace(entry->value.begin, entry->value.end - entry->value.begin, value);
  }
  return result.insert(dictionary.End() - 2, std::string(key) + ' ' + value);
}

std::string Without(std::string_view text, const RawDictionary& dictionary, std::string_view key) {
  std::string result(text);
  if (const RawDictionary::Entry* entry = dictionary.Find(key)) {
    result.replace(entry->keyBegin, entry->value.end - entry->keyBegin, "");
  }
  return result;
}

}  // namespace

std::string WithBaseUrl(const QuickDocument& document, const std::string& url) {
  const std::string_view catalog = document.catalog;
  const RawDictionary dictionary(catalog);
  const RawDictionary::Entry* uri = dictionary.Find(kUri);
  if (uri == nullptr || uri->value.kind != PdfLexer::Kind::kDictionary) {
    if (url.empty()) return Without(catalog, dictionary, kUri);
    return With(catalog, dictionary, kUri, "<</Base " + LiteralString(url) + ">>");
  }
  const std::string_view uriText = dictionary.Text(*uri);
  const RawDictionary uriDictionary(uriText);
  if (!url.empty()) {
    return With(catalog, dictionary, kUri, With(uriText, uriDictionary, kBase, LiteralString(url)));
  }
  const std::size_t others = uriDictionary.Entries().size() - (uriDictionary.Has(kBase) ? 1 : 0);
  if (others == 0) return Without(catalog, dictionary, kUri);
  return With(catalog, dictionary, kUri, Without(uriText, uriDictionary, kBase));
}

}  // namespace engine
