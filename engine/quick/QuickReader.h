// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "engine/quick/QuickDocument.h"

namespace engine {

class InputFile;

// Reads a document's catalog from the end of the file, at a cost that does not grow with the number of objects. It
// answers for plain intact files only: anything unusual or suspicious is left to a full parser (no value).
//
// All members throw EngineError kErrorFileUnreadable when the file cannot be read.
class QuickReader {
 public:
  static std::optional<QuickDocument> Read(const InputFile& file);

  // The last cross-reference section alone, of encrypted files too and of files with bytes before the header. For a
  // document that a full parser opened without repair; no value when no update can be appended.
  static std::optional<FileTail> ReadTail(const InputFile& file);
};

}  // namespace engine
