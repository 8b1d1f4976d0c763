// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace engine {

class InputFile;
class RawDictionary;

// Decodes the beginning of a stream's data, and no more of it than is asked for: plain or /FlateDecode, the latter with
// or without a PNG predictor of one byte a sample (ISO 32000-1, 7.4.4).
class StreamDecoder {
 public:
  struct Coding {
    bool flate = false;
    std::size_t columns = 0;  // bytes in a row of the predictor; 0 without one
  };

  // How a stream with this dictionary is coded (ISO 32000-1, 7.3.8.2). Throws PdfSyntaxError for any other coding.
  static Coding ReadCoding(const RawDictionary& dictionary);

  // The data are `length` bytes at `offset` of the file, which must outlive this object.
  StreamDecoder(const InputFile& file, std::uint64_t offset, std::uint64_t length, Coding coding);
  ~StreamDecoder();
  StreamDecoder(const StreamDecoder&) = delete;
  StreamDecoder& operator=(const StreamDecoder&) = delete;

  // What is decoded so far: at least `count` bytes unless the data end before. Valid until the next call. Throws
  // PdfSyntaxError when the data are damaged or more is asked for than a sound file needs.
  std::string_view Decode(std::size_t count);

 private:
  bool DecodeBlock();
  std::size_t ReadBlock();
  void Append(const unsigned char* bytes, std::size_t count);
  void AppendRow(const unsigned char* row);

  const InputFile& file_;
  std::uint64_t offset_;
  const std::uint64_t end_;
  const Coding coding_;
  z_stream inflater_ = {};
  bool finished_ = false;
  std::string input_;
  std::string filtered_;  // inflated bytes of a row that is not complete
  std::string decoded_;
};

}  // namespace engine
