// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/base/InputFile.h"
#include "engine/syntax/ObjectId.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

// A PDF file whose offsets count from its header, read in pieces that are as long as the parser at work needs.
class PdfFileText {
 public:
  // A dictionary object, or the dictionary of a stream and where its data begin.
  struct Object {
    ObjectId id;
    RawDictionary dictionary;
    std::uint64_t dataOffset = 0;  // 0 when it is not a stream
  };

  struct Trailer {
    RawDictionary dictionary;
    std::uint64_t end;  // of the dictionary
  };

  // Throws PdfSyntaxError when the header is beyond the end.
  explicit PdfFileText(const InputFile& file, std::uint64_t headerOffset = 0);

  // Bytes from the header on.
  std::uint64_t Size() const { return file_.Size() - headerOffset_; }
  std::uint64_t HeaderOffset() const { return headerOffset_; }
  const InputFile& File() const { return file_; }

  // See InputFile::ViewAt. Throws PdfSyntaxError after so many bytes that something must be wrong with the file.
  std::string_view View(std::uint64_t offset, std::size_t count, std::string& storage) const;
  std::string Read(std::uint64_t offset, std::size_t count) const {
    std::string storage;
    return std::string(View(offset, count, storage));
  }

  // Hands parse() the text from `offset` on, a longer one each time that it throws a truncated PdfSyntaxError.
  template <typename Parse>
  auto ParseAt(std::uint64_t offset, Parse parse) const {
    std::string storage;
    for (std::size_t window = kFirstWindow;; window *= 4) {
      const std::string_view text = View(offset, window, storage);
      try {
        return parse(text);
      } catch (const PdfSyntaxError& error) {
        if (!error.truncated() || text.size() < window || window >= kLastWindow) throw PdfSyntaxError();
      }
    }
  }

  // The object that starts at the offset exactly.
  Object ReadObject(std::uint64_t offset) const;
  // The dictionary after the word "trailer", which starts at the offset.
  Trailer ReadTrailer(std::uint64_t offset) const;
  // Throws unless that object starts at the offset and is a dictionary or stream.
  void CheckObject(std::uint64_t offset, ObjectId id) const;
  // Throws unless "endstream" follows the stream's data.
  void CheckStreamEnd(const Object& object, std::uint64_t length) const;

 private:
  static constexpr std::size_t kFirstWindow = 1024;
  static constexpr std::size_t kLastWindow = 4 * 1024 * 1024;

  const InputFile& file_;
  const std::uint64_t headerOffset_;
  const std::uint64_t readBefore_;
};

}  // namespace engine
