// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/BaseUrl.h"

#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"

namespace engine {

std::string WithBaseUrl(const std::string& catalog, const std::string& url) {
  DictionaryText dictionary(catalog);
  const auto old = dictionary.Find("/URI");
  DictionaryText uri = DictionaryText::Parse(std::string(old.value_or(""))).value_or(DictionaryText());
  if (url.empty()) {
    uri.Remove("/Base");
  } else {
    uri.Set("/Base", LiteralString(url));
  }
  if (uri.Empty()) {
    dictionary.Remove("/URI");
  } else {
    dictionary.Set("/URI", uri.Text());
  }
  return dictionary.Text();
}

}  // namespace engine
