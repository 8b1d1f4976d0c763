// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDFObjectHandle.hh>
#include <string>

#include "engine/backend/StringCipher.h"

namespace engine {

// The text of an object in a file: what it contains directly, references for the rest, strings encrypted.
class ObjectWriter {
 public:
  explicit ObjectWriter(const StringCipher& cipher) : cipher_(cipher) {}

  // `object` itself is written out even if it is an indirect one. It must not be a stream.
  std::string Write(QPDFObjectHandle object);

 private:
  void Append(QPDFObjectHandle object);
  void AppendValue(QPDFObjectHandle object);
  void AppendDictionary(QPDFObjectHandle dictionary);
  void AppendString(const std::string& bytes, bool encrypted);

  const StringCipher& cipher_;
  std::string text_;
};

}  // namespace engine
