// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/NameEscapes.h"

#include <string>
#include <vector>

namespace engine {

namespace {

bool NeedsEscape(const std::string& name) {
  return name.find('#') != std::string::npos;
}

std::string Escaped(const std::string& name) {
  std::string result;
  for (const char c : name) {
    result += c;
    if (c == '#') result += "23";
  }
  return result;
}

// The value in a container, escaped; containers in it are left to `pending`.
QPDFObjectHandle EscapedValue(QPDFObjectHandle value, std::vector<QPDFObjectHandle>& pending) {
  if (value.isIndirect()) return value;
  if (value.isName() && NeedsEscape(value.getName())) return QPDFObjectHandle::newName(Escaped(value.getName()));
  if (value.isArray() || value.isDictionary()) pending.push_back(value);
  return value;
}

void EscapeDictionary(QPDFObjectHandle dictionary, std::vector<QPDFObjectHandle>& pending) {
  for (const auto& [key, value] : dictionary.getDictAsMap()) {
    const bool keyChanges = NeedsEscape(key);
    const bool nameChanges =
        !value.isIndirect() && QPDFObjectHandle(value).isName() && NeedsEscape(QPDFObjectHandle(value).getName());
    const QPDFObjectHandle escaped = EscapedValue(value, pending);
    if (!keyChanges && !nameChanges) continue;
    if (keyChanges) dictionary.removeKey(key);
    dictionary.replaceKey(keyChanges ? Escaped(key) : key, escaped);
  }
}

void EscapeArray(QPDFObjectHandle array, std::vector<QPDFObjectHandle>& pending) {
  for (int i = 0; i < array.getArrayNItems(); ++i) {
    const QPDFObjectHandle item = array.getArrayItem(i);
    const QPDFObjectHandle escaped = EscapedValue(item, pending);
    if (!item.isIndirect() && QPDFObjectHandle(item).isName()) array.setArrayItem(i, escaped);
  }
}

void EscapeIn(QPDFObjectHandle container) {
  std::vector<QPDFObjectHandle> pending = {container};
  while (!pending.empty()) {
    QPDFObjectHandle object = pending.back();
    pending.pop_back();
    if (object.isStream()) object = object.getDict();
    if (object.isDictionary()) {
      EscapeDictionary(object, pending);
    } else if (object.isArray()) {
      EscapeArray(object, pending);
    }
  }
}

}  // namespace

void EscapeNames(QPDF& document) {
  for (QPDFObjectHandle& object : document.getAllObjects()) {
    if (object.isName() && NeedsEscape(object.getName())) {
      document.replaceObject(object.getObjGen(), QPDFObjectHandle::newName(Escaped(object.getName())));
    } else {
      EscapeIn(object);
    }
  }
  EscapeIn(document.getTrailer());
}

}  // namespace engine
