// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/syntax/ObjectId.h"

namespace engine {

class FileWindow;
class InputFile;

// The objects of a file, found without its cross-references.
struct FileScan {
  enum class Kind : unsigned char { kPlain, kCatalog, kStream, kObjectStream, kXrefStream };
  struct Object {
    ObjectId id;
    std::uint64_t offset = 0;  // of its number, from the start of the file
    Kind kind = Kind::kPlain;
    bool cutOff = false;  // the file ends inside it
    // Its number follows other text without space, as where a line end is damaged. Few readers find it without
    // cross-references. Its value is whole.
    bool afterJunk = false;
    // Its text, or its stream's dictionary, is not PDF syntax, or its stream does not end with its keyword: readers may
    // take what follows for a part of it.
    bool damaged = false;
    // A dictionary in it has a key that is not a name, or a key without a value. Some readers do not read it.
    bool badKeys = false;
    // Follows such an object, before its brackets close or, if it is a stream, before the next end of one; or follows a
    // trailer that is open; or is in the data of a stream whose /Length does not lead to their end. Or its number is
    // not the first thing on its line.
    bool inside = false;
    // Of streams: where the data begin, where they end in the file, and whether /Length leads elsewhere.
    std::uint64_t data = 0;
    std::uint64_t dataEnd = 0;
    bool wrongLength = false;
  };

  struct Trailer {
    std::uint64_t offset = 0;
    std::string text;
  };

  // In the order of the file; a number may occur several times.
  std::vector<Object> objects;
  // The dictionaries of trailers and cross-reference streams, in the order of the file. They may be damaged.
  std::vector<Trailer> trailers;
  // Where the last "startxref" of the file and its number end, and some before it; the last one last.
  std::vector<std::uint64_t> ends;
  // Where the last value begins, inside or outside of objects, that is damaged or cut off.
  std::optional<std::uint64_t> damage;
  // The last object that looks like an encryption dictionary; number 0 for none.
  ObjectId encryption;
  // The offsets of headers "%PDF-" outside of objects, or in streams of a wrong length, in the order of the file.
  std::vector<std::uint64_t> headers;

  // From `start` on, which is where the header is. Reads the whole file once, or twice where streams have their lengths
  // in other objects. Text inside strings, and inside streams with a right
  // /Length, is not taken for objects. Never fails on damage. Throws
  // EngineError as InputFile does.
  static FileScan Of(const InputFile& file, std::uint64_t start);
};

// The value of a key of a dictionary, as it is in the text; empty when there is none. Where the dictionary is
// damaged it is the first value after the key, at any depth.
std::string LenientEntry(const std::string& dictionary, const std::string& key);

// Whether "endstream" follows the offset.
bool StreamEndFollows(FileWindow& window, std::uint64_t offset);

// The newest object of each number, in the order of their numbers: of those that are not cut off and do not follow junk
// the one of the highest generation that is last in the file.
std::vector<FileScan::Object> NewestObjects(const std::vector<FileScan::Object>& objects);

}  // namespace engine
