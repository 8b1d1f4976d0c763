// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/QuickReader.h"

namespace engine {

std::optional<QuickDocument> QuickReader::Read(const InputFile&) {
  return std::nullopt;
}

std::optional<FileTail> QuickReader::ReadTail(const InputFile&) {
  return std::nullopt;
}

std::optional<std::string> QuickReader::ReadDictionary(const InputFile&, const FileTail&, ObjectId) {
  return std::nullopt;
}

}  // namespace engine
