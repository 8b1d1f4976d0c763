// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/base/InputFile.h"
#include "engine/links/FileWindows.h"
#include "engine/links/XrefMap.h"
#include "engine/syntax/ObjectId.h"

namespace engine {

// The objects of an undamaged file without encryption, found by its cross-reference sections. These are read once; then
// each object costs one read. An object stream is decoded once, as long as the decoded streams fit the cache. Members
// throw PdfSyntaxError for what is damaged or unusual.
class QuickObjects {
 public:
  // The file begins with its header. It must outlive this object.
  QuickObjects(const InputFile& file, std::uint64_t startXref);

  // The text between "obj" and "endobj"; "null" when there is no such object, no value for a stream.
  std::optional<std::string> Text(ObjectId id);
  // Whether there is an object of that number and generation at all.
  bool Exists(ObjectId id) const;

 private:
  struct ObjectStream {
    std::uint32_t number = 0;
    std::string data;
    std::vector<std::pair<std::uint64_t, std::size_t>> objects;  // number, and where it begins in the data
  };

  std::optional<std::string> TextAt(std::uint64_t offset, ObjectId id);
  std::string TextInStream(ObjectId id, const XrefMap::Place& place);
  const ObjectStream& Stream(std::uint32_t number);
  ObjectStream ReadStream(std::uint32_t number);
  std::uint64_t StreamLength(std::string_view value);

  const InputFile& file_;
  const XrefMap places_;
  FileWindows windows_;
  std::list<ObjectStream> streams_;  // the latest used first
  std::unordered_map<std::uint32_t, std::list<ObjectStream>::iterator> streamsByNumber_;
  std::size_t streamBytes_ = 0;
  std::uint64_t decodable_;  // bytes
};

}  // namespace engine
