// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/StructureGuard.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"

namespace engine {

namespace {

constexpr std::uint64_t kSmallFile = 16 << 20;
constexpr std::size_t kStreamLimit = 64 << 20;  // inflated; the parser takes four times that
constexpr std::size_t kFileLimit = 512 << 20;   // of all such streams together
constexpr std::size_t kLongestDictionary = 4096;
constexpr std::string_view kStream = "stream";

// How many bytes come out of the deflate data at the start of `data`, as far as `limit`.
std::size_t InflatedSize(std::string_view data, std::size_t limit) {
  z_stream inflater = {};
  if (inflateInit(&inflater) != Z_OK) throw EngineError(kErrorOutOfMemory, "no memory for inflating");
  inflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
  inflater.avail_in = static_cast<uInt>(data.size());
  Bytef sink[64 * 1024];
  std::size_t size = 0;
  int status = Z_OK;
  while (status == Z_OK && size < limit) {
    inflater.next_out = sink;
    inflater.avail_out = sizeof sink;
    status = inflate(&inflater, Z_NO_FLUSH);
    size += sizeof sink - inflater.avail_out;
  }
  inflateEnd(&inflater);
  return size;
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool IsStructure(std::string_view dictionary) {
  return Contains(dictionary, "/ObjStm") || Contains(dictionary, "/XRef");
}

// Deflate data inside deflate data, which no producer writes and no size tells anything of.
bool IsDeflatedTwice(std::string_view dictionary) {
  constexpr std::string_view kFilter = "/FlateDecode";
  const std::size_t first = dictionary.find(kFilter);
  return first != std::string_view::npos && Contains(dictionary.substr(first + kFilter.size()), kFilter);
}

}  // namespace

void GuardStructure(const InputFile& file) {
  if (file.Size() > kSmallFile) return;
  const std::string bytes = file.ReadAt(0, static_cast<std::size_t>(file.Size()));
  const std::string_view text = bytes;
  std::size_t total = 0;
  std::size_t previous = 0;
  for (std::size_t at = text.find(kStream); at != std::string_view::npos; at = text.find(kStream, previous)) {
    std::string_view dictionary = text.substr(previous, at - previous);
    if (dictionary.size() > kLongestDictionary) dictionary.remove_prefix(dictionary.size() - kLongestDictionary);
    previous = at + kStream.size();
    if (!IsStructure(dictionary)) continue;
    const std::size_t data = text.find_first_not_of("\r\n", previous);
    if (data == std::string_view::npos) return;
    const std::size_t size = InflatedSize(text.substr(data), kStreamLimit);
    total += size;
    if (size >= kStreamLimit || total >= kFileLimit || IsDeflatedTwice(dictionary)) {
      throw EngineError(kErrorDamaged, "a structure stream inflates to far more than the file can hold");
    }
  }
}

}  // namespace engine
