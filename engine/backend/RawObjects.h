// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <string>

#include "engine/syntax/ObjectId.h"

namespace engine {

class InputFile;

// The texts of a document's objects as in the file, found by the parser's cross-reference. Strings are decrypted.
class RawObjects {
 public:
  // Offsets count from the header. `document` and `file` must outlive this object.
  RawObjects(QPDF& document, const InputFile& file, std::uint64_t headerOffset);

  // No value for a stream and for what is not plain PDF syntax.
  std::optional<std::string> Text(ObjectId id);

 private:
  std::string TextInFile(ObjectId id, std::uint64_t offset);
  std::string TextInStream(ObjectId id, int stream);
  void OpenStream(int number);

  QPDF& document_;
  const InputFile& file_;
  const std::uint64_t headerOffset_;
  const std::map<QPDFObjGen, QPDFXRefEntry> entries_;
  // The latest object stream: objects of a kind lie together.
  int stream_ = 0;
  std::shared_ptr<Buffer> data_;
  std::map<std::uint64_t, std::uint64_t> offsets_;  // by object number
};

}  // namespace engine
