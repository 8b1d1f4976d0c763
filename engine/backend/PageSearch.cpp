// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/PageSearch.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace engine {

namespace {

bool IsPage(QPDFObjectHandle node) {
  if (!node.isDictionary() || node.getKey("/Kids").isArray()) return false;
  QPDFObjectHandle type = node.getKey("/Type");
  return type.isNameAndEquals("/Page") || !type.isName();
}

QPDFObjectHandle DictionaryOf(QPDFObjectHandle object) {
  return object.isStream() ? object.getDict() : object;
}

}  // namespace

void VisitPageTree(QPDFObjectHandle catalog, const std::function<bool(QPDFObjectHandle node)>& visit) {
  if (!catalog.isDictionary()) return;
  std::vector<QPDFObjectHandle> pending = {catalog.getKey("/Pages")};
  std::set<QPDFObjGen> seen;
  while (!pending.empty()) {
    QPDFObjectHandle node = pending.back();
    pending.pop_back();
    if (node.isIndirect() && !seen.insert(node.getObjGen()).second) continue;
    if (!visit(node)) return;
    if (!node.isDictionary()) continue;
    QPDFObjectHandle kids = node.getKey("/Kids");
    if (!kids.isArray()) continue;
    std::vector<QPDFObjectHandle> nodes = kids.getArrayAsVector();
    pending.insert(pending.end(), nodes.rbegin(), nodes.rend());
  }
}

bool LeadsToPage(QPDFObjectHandle catalog) {
  bool found = false;
  VisitPageTree(catalog, [&found](QPDFObjectHandle node) {
    found = IsPage(node);
    return !found;
  });
  return found;
}

bool SameKind(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (one.getTypeCode() != other.getTypeCode()) return false;
  if (!DictionaryOf(one).isDictionary()) return true;
  return DictionaryOf(one).getKey("/Type").unparse() == DictionaryOf(other).getKey("/Type").unparse();
}

bool IsInventedKey(const std::string& key) {
  return key.compare(0, 9, "/QPDFFake") == 0;
}

bool HasInventedKeys(QPDFObjectHandle dictionary) {
  if (!dictionary.isDictionary()) return false;
  // Without looking at values: the guards against hostile files may be still to come.
  const std::map<std::string, QPDFObjectHandle> entries = dictionary.getDictAsMap();
  return std::any_of(entries.begin(), entries.end(), [](const auto& entry) { return IsInventedKey(entry.first); });
}

void VisitReachable(QPDF& document, const std::function<void(QPDFObjectHandle object)>& visit) {
  std::vector<QPDFObjectHandle> pending;
  std::set<QPDFObjGen> seen;
  QPDFObjectHandle trailer = document.getTrailer();
  for (const char* const key : {"/Root", "/Info"}) pending.push_back(trailer.getKey(key));
  while (!pending.empty()) {
    QPDFObjectHandle object = pending.back();
    pending.pop_back();
    if (object.isIndirect()) {
      if (!seen.insert(object.getObjGen()).second || object.isNull()) continue;
      visit(object);
    }
    if (object.isArray()) {
      for (QPDFObjectHandle& item : object.getArrayAsVector()) pending.push_back(item);
    } else if (object.isDictionary() || object.isStream()) {
      const QPDFObjectHandle dictionary = object.isStream() ? object.getDict() : object;
      for (const auto& [key, value] : QPDFObjectHandle(dictionary).getDictAsMap()) {
        if (key != "/Length" || !object.isStream()) pending.push_back(value);
      }
    }
  }
}

ReachableObjects ReachableObjects::Of(QPDF& document) {
  ReachableObjects result;
  VisitReachable(document, [&result](QPDFObjectHandle) { ++result.objects; });
  VisitPageTree(document.getRoot(), [&result](QPDFObjectHandle node) {
    result.pages += IsPage(node) ? 1 : 0;
    return true;
  });
  return result;
}

}  // namespace engine
