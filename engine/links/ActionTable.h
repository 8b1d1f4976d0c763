// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/links/DictionaryView.h"
#include "engine/links/LocatedValue.h"

namespace engine {

// The actions of a document that were asked for, by IDs from 1 on (ISO 32000-1, 12.6). The actions of one place have
// consecutive IDs: the first one and, depth first, those that follow it (/Next), each once. The ID after the last of
// them is not an action.
class ActionTable {
 public:
  struct Action {
    ObjectId holder;                    // see LocatedValue
    const std::string* path = nullptr;  // lives as long as the table
    const std::string* type = nullptr;  // /S without slash; null: not an action
    std::string_view uri;               // the text of /URI, possibly a reference; empty for other actions
  };
  // An entry that names an action: where it is, and its value.
  struct Slot {
    ObjectId owner;    // the object that has the entry
    std::string path;  // of the entry there: it ends in "/A", or in "/AA/E" and so on
    LocatedValue action;
  };

  // `most` limits the actions of all places together: in a damaged document each place can lead to every other action.
  explicit ActionTable(std::size_t most = 4'000'000) : most_(most) {}

  // Gives the actions in these slots consecutive IDs and returns the first one; 0 when there are none. A slot that has
  // IDs keeps them; when all have, the first slot's ID is returned. Throws EngineError(kErrorFileTooLarge) when there
  // are more actions than the limit; no further place gets actions then.
  int Register(ObjectTexts& objects, std::vector<Slot> slots);
  // Removes the slot: its IDs are not given again, and are not actions any more.
  void Forget(ObjectId owner, const std::string& path);
  // An action without a type when the ID is not an action.
  Action Find(int id) const;

 private:
  struct Record {
    ObjectId holder;
    const std::string* path = nullptr;
    const std::string* type = nullptr;
    std::size_t uri = 0;  // in uris_
    std::uint32_t uriLength = 0;
  };
  using SlotKey = std::pair<ObjectId, const std::string*>;

  void AddChain(ObjectTexts& objects, LocatedValue first);
  void Add(const LocatedValue& action, std::string_view type, std::string_view uri);
  const std::string* Kept(std::string_view text);

  const std::size_t most_;
  std::vector<Record> records_;
  std::string uris_;
  std::unordered_set<std::string> texts_;  // paths and types, each once
  std::map<SlotKey, int> slots_;
};

// The slot of an annotation, outline item or field whose path from there on is "/A" or "/AA/E".
ActionTable::Slot ActionSlot(ObjectTexts& objects, const LocatedValue& owner, std::string_view path);
// All slots of an annotation with these entries: /A, then the entries of /AA in their order.
std::vector<ActionTable::Slot> ActionSlots(ObjectTexts& objects, const LocatedValue& owner,
                                           const DictionaryView& entries);

}  // namespace engine
