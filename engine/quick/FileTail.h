// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/syntax/ObjectId.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

// What an update that is appended to a file has to continue: its last cross-reference section and trailer
// (ISO 32000-1, 7.5.4 to 7.5.8).
struct FileTail {
  enum class Kind {
    kTable,   // a cross-reference table
    kStream,  // a cross-reference stream
  };
  struct Entry {
    std::string key;    // as in the file, with its slash
    std::string value;  // as in the file
  };
  // Where an object is that a complete section names.
  struct KeptObject {
    ObjectId id;
    std::uint64_t offset = 0;  // of "N G obj" from the header; not used in an object stream
    std::uint32_t stream = 0;  // the number of the object stream that the object is in; 0 for none
    std::uint32_t index = 0;   // its index there
  };

  // The position of the header "%PDF-". Every offset in the file, and startXref, counts from there.
  std::uint64_t headerOffset = 0;
  std::uint64_t startXref = 0;
  Kind kind = Kind::kTable;
  bool hasStreams = false;  // a section of the file is a cross-reference stream, or has one by /XRefStm
  // The value of /Size. Callers that know of objects beyond it may raise it, never lower it.
  std::uint32_t size = 0;
  ObjectId root;
  // The trailer's other entries in their order (/Info, /Encrypt, /ID and whatever a producer added), without /Size,
  // /Root, /Prev, /XRefStm and what describes the cross-reference stream itself.
  std::vector<Entry> entries;
  // For a file whose own sections do not serve: all its objects, each number once. The update then has one complete
  // section without /Prev, and startXref, kind and hasStreams are not used.
  std::optional<std::vector<KeptObject>> kept;
  // Written after the file, before everything else: objects that are in `kept` with their places there.
  std::string repaired;

  // The value of an entry as in the file; empty when there is none.
  std::string Value(const std::string& key) const {
    for (const Entry& entry : entries) {
      if (entry.key == key) return entry.value;
    }
    return {};
  }
  // Changes or adds an entry; "/Root" too.
  void SetValue(const std::string& key, const std::string& value) {
    if (key == "/Root") {
      root = PdfLexer::ToReference(value);
      return;
    }
    for (Entry& entry : entries) {
      if (entry.key == key) {
        entry.value = value;
        return;
      }
    }
    entries.push_back({key, value});
  }
  // Whether no object can be in an object stream.
  bool OnlyTables() const {
    if (!kept) return !hasStreams;
    return std::none_of(kept->begin(), kept->end(), [](const KeptObject& object) { return object.stream != 0; });
  }
  bool Encrypted() const { return !Value("/Encrypt").empty(); }
};

}  // namespace engine
