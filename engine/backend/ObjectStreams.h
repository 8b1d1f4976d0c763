// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <qpdf/QPDF.hh>
#include <vector>

namespace engine {

// Looks into the object streams of an opened document, decoding each as the parser does, decryption included.
class ObjectStreams {
 public:
  // The parser decodes such a stream whole and makes objects of everything in it. Streams that would take more memory
  // than a file of `fileSize` bytes needs are refused.
  explicit ObjectStreams(std::uint64_t fileSize);

  // The numbers of the objects in a stream, in their order; 0 for those whose place is not in its data. Empty when the
  // object is not an object stream. Throws EngineError kErrorDamaged when it inflates to far more than the file can
  // hold.
  std::vector<std::uint32_t> Members(QPDFObjectHandle stream);
  // Whether every stream that Members() was asked for so far could be decoded to its end.
  bool Decoded() const { return decoded_; }

  // Members() of every stream that the document's cross-references name, except short ones of large files, which cannot
  // hold much.
  // Returns whether each holds the objects that are said to be in it.
  bool Check(QPDF& document);

 private:
  const std::uint64_t fileSize_;
  const std::uint64_t limit_;
  std::uint64_t cost_ = 0;
  bool decoded_ = true;
};

}  // namespace engine
