// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/XrefStreamGuard.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

constexpr std::uint64_t kSmallFile = 16 << 20;
// Inflated bytes that every file may have, and more for each of its own: an entry takes at least 20 bytes of a file, or
// some of an object stream.
constexpr std::size_t kFreeBytes = 4 << 20;
constexpr std::size_t kBytesPerFileByte = 8;
constexpr unsigned long kMostColumns = 1 << 16;
constexpr std::string_view kStream = "stream";
constexpr std::string_view kObject = "obj";

// How many bytes come out of the deflate data at the start of `data`, as far as `limit`.
std::size_t InflatedSize(std::string_view data, std::size_t limit) {
  z_stream inflater = {};
  if (inflateInit(&inflater) != Z_OK) throw EngineError(kErrorOutOfMemory, "no memory for inflating");
  inflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
  inflater.avail_in = static_cast<uInt>(data.size());
  Bytef sink[8 * 1024];  // the stack may be small
  std::size_t size = 0;
  int status = Z_OK;
  while (status == Z_OK && size <= limit) {
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

// Names may hold any character as "#" and two digits (ISO 32000-1, 7.3.5).
std::string WithoutEscapes(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    plain += text[i];
    if (text[i] != '#' || text.size() - i < 3) continue;
    const char digits[] = {text[i + 1], text[i + 2], '\0'};
    char* end = nullptr;
    const unsigned long code = std::strtoul(digits, &end, 16);
    if (end != digits + 2) continue;
    plain.back() = static_cast<char>(code);
    i += 2;
  }
  return plain;
}

// Compressed data inside other data: no producer writes such sections, and their size does not limit what they inflate
// to.
bool IsFilteredTwice(std::string_view dictionary) {
  constexpr std::string_view kFilters[] = {"/Fl", "/ASCII", "/AHx", "/A85", "/RunLength", "/RL", "/LZW"};
  std::size_t filters = 0;
  for (const std::string_view name : kFilters) {
    for (std::size_t at = dictionary.find(name); at != std::string_view::npos; at = dictionary.find(name, at + 1)) {
      ++filters;
    }
  }
  return filters > 1 || Contains(dictionary, "/LZW");
}

bool HasHugeRows(std::string_view dictionary) {
  for (const std::string_view key : {"/Columns", "/Colors"}) {
    for (std::size_t at = dictionary.find(key); at != std::string_view::npos; at = dictionary.find(key, at + 1)) {
      const std::string number(dictionary.substr(at + key.size(), 32));
      if (std::strtoul(number.c_str(), nullptr, 10) > kMostColumns) return true;
    }
  }
  return false;
}

struct Place {
  std::size_t stream;  // the keyword's place; npos when the object is not a stream
  std::size_t looked;  // bytes read for that
  bool sound;          // whether a readable value comes before it
};

// For the object whose value starts here. After what cannot be read as a value the next keyword counts.
Place FindStream(std::string_view object) {
  PdfLexer lexer(object);
  try {
    lexer.ReadValue();
    lexer.SkipSpace();
    const std::size_t end = lexer.Position();
    return {object.compare(end, kStream.size(), kStream) == 0 ? end : std::string_view::npos, end, true};
  } catch (const PdfSyntaxError&) {
    const std::size_t stream = object.find(kStream, lexer.Position());
    return {stream, std::min(stream, object.size()), false};
  }
}

[[noreturn]] void Refuse() {
  throw EngineError(kErrorDamaged, "a cross-reference stream inflates to far more than the file can hold");
}

}  // namespace

void GuardXrefStreams(const InputFile& file) {
  if (file.Size() > kSmallFile) return;
  const std::string bytes = file.ReadAt(0, static_cast<std::size_t>(file.Size()));
  const std::string_view text = bytes;
  const std::size_t limit = kFreeBytes + kBytesPerFileByte * bytes.size();
  std::size_t inflated = 0;
  std::size_t looked = 0;
  for (std::size_t at = text.find(kObject); at != std::string_view::npos; at = text.find(kObject, at + 1)) {
    if (at >= 3 && text.substr(at - 3, 3) == "end") continue;
    const std::string_view object = text.substr(at + kObject.size());
    const auto [stream, read, sound] = FindStream(object);
    looked += read;
    if (looked > limit) Refuse();  // objects inside objects inside objects
    if (stream == std::string_view::npos) continue;
    const std::string_view before = object.substr(0, stream);
    if (!Contains(before, "/X") && !Contains(before, "#")) continue;
    const std::string dictionary = WithoutEscapes(before);
    if (!Contains(dictionary, "/XRef")) continue;
    const std::size_t data = object.find_first_not_of("\r\n", stream + kStream.size());
    if (data == std::string_view::npos) continue;
    inflated += InflatedSize(object.substr(data), limit);
    // With an unreadable value the stream's filters are unknown.
    if (inflated > limit || (sound && IsFilteredTwice(dictionary)) || HasHugeRows(dictionary)) Refuse();
  }
}

}  // namespace engine
