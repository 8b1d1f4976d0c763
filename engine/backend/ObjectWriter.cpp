// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/ObjectWriter.h"

#include <utility>

#include "engine/syntax/LiteralString.h"

namespace engine {

namespace {

// The one string of an encrypted document that stays in the clear (ISO 32000-1, 7.6.1): a signature's value.
bool IsSignature(QPDFObjectHandle dictionary) {
  return dictionary.getKey("/Type").isNameAndEquals("/Sig") && dictionary.hasKey("/ByteRange") &&
         dictionary.getKey("/Contents").isString();
}

std::string HexString(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "<";
  text.reserve(2 * bytes.size() + 2);
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 0xF];
  }
  return text + '>';
}

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
    AppendString(object.getStringValue(), true);
  } else {
    text_ += object.unparseResolved();
  }
}

void ObjectWriter::AppendDictionary(QPDFObjectHandle dictionary) {
  const bool signature = IsSignature(dictionary);
  text_ += "<< ";
  for (const auto& [key, value] : dictionary.getDictAsMap()) {
    // A null direct value is the same as no entry.
    if (!value.isIndirect() && QPDFObjectHandle(value).isNull()) continue;
    text_ += QPDFObjectHandle::newName(key).unparse() + ' ';
    if (signature && key == "/Contents" && !value.isIndirect()) {
      AppendString(QPDFObjectHandle(value).getStringValue(), false);
    } else {
      Append(value);
    }
    text_ += ' ';
  }
  text_ += ">>";
}

void ObjectWriter::AppendString(const std::string& bytes, bool encrypted) {
  if (encrypted && cipher_.Encrypts()) {
    text_ += HexString(cipher_.Encrypt(bytes));
  } else {
    text_ += LiteralString(bytes);
  }
}

}  // namespace engine
