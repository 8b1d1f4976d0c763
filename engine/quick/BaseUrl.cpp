// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/BaseUrl.h"

#include "engine/quick/PdfSyntaxError.h"
#include "engine/quick/RawDictionary.h"

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

std::string WithBase(std::string_view catalog, const std::string& stringObject) {
  const RawDictionary dictionary(catalog);
  if (dictionary.End() != catalog.size()) throw PdfSyntaxError();
  const RawDictionary::Entry* uri = dictionary.Find(kUri);
  if (uri != nullptr && uri->value.kind == PdfLexer::Kind::kReference) throw PdfSyntaxError();
  if (uri == nullptr || uri->value.kind != PdfLexer::Kind::kDictionary) {
    if (stringObject.empty()) return Without(catalog, dictionary, kUri);
    return With(catalog, dictionary, kUri, "<</Base " + stringObject + ">>");
  }
  const std::string_view uriText = dictionary.Text(*uri);
  const RawDictionary uriDictionary(uriText);
  if (!stringObject.empty()) {
    return With(catalog, dictionary, kUri, With(uriText, uriDictionary, kBase, stringObject));
  }
  const std::size_t others = uriDictionary.Entries().size() - (uriDictionary.Find(kBase) != nullptr ? 1 : 0);
  if (others == 0) return Without(catalog, dictionary, kUri);
  return With(catalog, dictionary, kUri, Without(uriText, uriDictionary, kBase));
}

}  // namespace

std::string LiteralString(const std::string& bytes) {
  std::string text = "(";
  for (const char c : bytes) {
    switch (c) {
      case '(':
      case ')':
      case '\\':
        text += '\\';
        text += c;
        break;
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      default:
        text += c;
        break;
    }
  }
  return text + ')';
}

std::optional<std::string> WithBaseObject(const std::string& catalog, const std::string& stringObject) {
  try {
    return WithBase(catalog, stringObject);
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

std::string WithBaseUrl(const QuickDocument& document, const std::string& url) {
  return WithBase(document.catalog, url.empty() ? std::string() : LiteralString(url));
}

}  // namespace engine
