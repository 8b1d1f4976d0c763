// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/base/InputFile.h"
#include "engine/quick/QuickDocument.h"

namespace engine {

// Reads a document's catalog from the end of the file, at a cost that does not grow with the number of objects. It
// reads plain intact files only: anything unusual or suspicious is left to a full parser (no value).
//
// All members throw EngineError kErrorFileUnreadable when the file cannot be read.
class QuickReader {
 public:
  // Some readers do not read files whose /Size is larger (ISO 32000-1, table C.1).
  static constexpr std::uint32_t kLargestSize = 8388608;

  static std::optional<QuickDocument> Read(const InputFile& file);

  // Of encrypted files too and of files with bytes before the header. For a document that a full parser opened without
  // repair; no value when its cross-reference sections are not plain: readers that rebuild those rebuild an update that
  // continues them, too.
  static std::optional<FileTail> ReadTail(const InputFile& file);

  // Where offsets count from: the header if it stands in the first 1024 bytes, otherwise the start of the file. Readers
  // agree on that, apart from those that rebuild the cross-references of every file with bytes before the header.
  static std::uint64_t HeaderOffset(const InputFile& file);
  // Whether the header, with a version, is the first thing in the file.
  static bool StartsWithHeader(const InputFile& file);

  // Whether an update's trailer repeats this entry (a key with its slash) of the trailer before it.
  static bool IsRepeatedEntry(std::string_view key);
};

}  // namespace engine
