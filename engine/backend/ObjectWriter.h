// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDFObjectHandle.hh>
#include <string>

namespace engine {

// The parser's name as it is in a file.
std::string NameText(std::string name);

// The text of an object: what it contains directly, references for the rest, strings in the clear.
class ObjectWriter {
 public:
  // `object` itself is written out even if it is an indirect one. It must not be a stream.
  std::string Write(QPDFObjectHandle object);

 private:
  void Append(QPDFObjectHandle object);
  void AppendValue(QPDFObjectHandle object);
  void AppendDictionary(QPDFObjectHandle dictionary);

  std::string text_;
};

}  // namespace engine
