// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "engine/syntax/ObjectId.h"

namespace engine {

// What was changed in a document since it was loaded: whole objects and entries of the trailer. Texts are PDF syntax
// with strings in the clear. An object that is not in the file is an added one.
class Edits {
 public:
  bool Empty() const { return objects_.empty() && trailer_.empty(); }

  // The new text of an object; null when it is as in the file. Valid until that object is set again.
  const std::string* Find(ObjectId id) const { return FindIn(objects_, id); }
  void Set(ObjectId id, std::string text) { objects_[id] = std::move(text); }
  void Reset(ObjectId id) { objects_.erase(id); }
  const std::map<ObjectId, std::string>& Objects() const { return objects_; }

  // The new value of a trailer entry; the key has its slash.
  const std::string* FindTrailer(const std::string& key) const { return FindIn(trailer_, key); }
  void SetTrailer(const std::string& key, std::string value) { trailer_[key] = std::move(value); }
  void ResetTrailer(const std::string& key) { trailer_.erase(key); }
  const std::map<std::string, std::string>& Trailer() const { return trailer_; }

  // The number for another added object. `firstFree` is one above the highest number in the file.
  std::uint32_t NextNumber(std::uint32_t firstFree) const {
    return objects_.empty() ? firstFree : std::max(firstFree, objects_.rbegin()->first.number + 1);
  }

 private:
  template <typename Map, typename Key>
  static const std::string* FindIn(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found != map.end() ? &found->second : nullptr;
  }

  std::map<ObjectId, std::string> objects_;
  std::map<std::string, std::string> trailer_;
};

}  // namespace engine
