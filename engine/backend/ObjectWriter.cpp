// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/ObjectWriter.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "engine/syntax/LiteralString.h"
#include "engine/syntax/PdfName.h"

namespace engine {

namespace {

constexpr std::string_view kMadeUpKey = "/QPDFFake";

}  // namespace

std::string ObjectWriter::Write(QPDFObjectHandle object) {
  text_.clear();
  AppendValue(object);
  return std::move(text_);
}

void ObjectWriter::Append(QPDFObjectHandle object) {
  if (object.isIndirect()) {
    text_ += object.unparse();
  } else {
    AppendValue(object);
  }
}

// The parser has a null character for a "#" without two digits.
std::string NameText(std::string name) {
  std::replace(name.begin(), name.end(), '\0', '#');
  return EscapedName(name);
}

void ObjectWriter::AppendValue(QPDFObjectHandle object) {
  if (object.isDictionary()) {
    AppendDictionary(object);
  } else if (object.isArray()) {
    text_ += "[ ";
    for (const QPDFObjectHandle& item : object.getArrayAsVector()) {
      Append(item);
      text_ += ' ';
    }
    text_ += ']';
  } else if (object.isString()) {
    text_ += LiteralString(object.getStringValue());
  } else if (object.isName()) {
    text_ += NameText(object.getName());
  } else {
    text_ += object.unparseResolved();
  }
}

void ObjectWriter::AppendDictionary(QPDFObjectHandle dictionary) {
  text_ += "<< ";
  for (const auto& [key, value] : dictionary.getDictAsMap()) {
    // A null direct value is the same as no entry.
    if (!value.isIndirect() && QPDFObjectHandle(value).isNull()) continue;
    // The parser makes up keys where it finds none.
    if (key.compare(0, kMadeUpKey.size(), kMadeUpKey) == 0) continue;
    text_ += NameText(key) + ' ';
    Append(value);
    text_ += ' ';
  }
  text_ += ">>";
}

}  // namespace engine
