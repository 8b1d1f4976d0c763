// SPDX-License-Identifier: Apache-2.0
#include "engine/links/ActionTable.h"

#include <set>

#include "engine/base/EngineError.h"
#include "engine/links/DictionaryView.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfName.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// A value of /Next, or an element of it. A reference is loaded later, in its turn.
LocatedValue Unloaded(const LocatedValue& parent, std::string_view value, const std::string& step) {
  if (IsReference(value)) {
    try {
      return {PdfLexer::ToReference(value), {}, {}};
    } catch (const PdfSyntaxError&) {
      value = "null";
    }
  }
  return {parent.holder, parent.path + step, std::string(value)};
}

}  // namespace

const std::string* ActionTable::Kept(std::string_view text) {
  return &*texts_.emplace(text).first;
}

int ActionTable::Register(ObjectTexts& objects, std::vector<Slot> slots) {
  const std::size_t before = records_.size();
  int known = 0;
  for (Slot& slot : slots) {
    const SlotKey key{slot.owner, Kept(slot.path)};
    const auto found = slots_.find(key);
    if (found != slots_.end()) {
      if (known == 0) known = found->second;
      continue;
    }
    const std::size_t first = records_.size();
    AddChain(objects, std::move(slot.action));
    if (records_.size() > first) slots_[key] = static_cast<int>(first) + 1;
  }
  if (records_.size() == before) return known;
  records_.emplace_back();  // not an action
  return static_cast<int>(before) + 1;
}

void ActionTable::AddChain(ObjectTexts& objects, LocatedValue first) {
  std::set<ObjectId> visited;  // indirect actions and arrays of them: a chain can only return to one of these
  std::vector<LocatedValue> following = {std::move(first)};
  while (!following.empty()) {
    LocatedValue action = std::move(following.back());
    following.pop_back();
    if (action.path.empty()) {
      if (!visited.insert(action.holder).second) continue;
      const ObjectId named = action.holder;
      if (action.text.empty()) action = LoadObject(objects, named);
      if (action.holder != named && !visited.insert(action.holder).second) continue;
    }
    const DictionaryView entries(action.text);
    const std::string type = NameText(Entry(objects, action, entries, "/S").text);
    if (type.empty()) continue;
    Add(action, type, entries.Find("/URI"));
    const std::string_view next = entries.Find("/Next");
    if (next.empty()) continue;
    LocatedValue value = Unloaded(action, next, "/Next");
    if (visited.count(value.holder) == 0 && value.text.empty()) value = LoadObject(objects, value.holder);
    if (!IsArray(value.text)) {
      following.push_back(std::move(value));
      continue;
    }
    if (value.path.empty() && !visited.insert(value.holder).second) continue;
    const std::vector<std::string_view> elements = ArrayElements(value.text);
    for (std::size_t i = elements.size(); i-- > 0;) {
      following.push_back(Unloaded(value, elements[i], ElementStep(i)));
    }
  }
}

void ActionTable::Add(const LocatedValue& action, std::string_view type, std::string_view uri) {
  if (records_.size() >= most_) throw EngineError(kErrorFileTooLarge, "the document has too many actions");
  Record record{action.holder, Kept(action.path), Kept(type)};
  if (type == "URI") {
    record.uri = uris_.size();
    record.uriLength = static_cast<std::uint32_t>(uri.size());
    uris_ += uri;
  }
  records_.push_back(record);
}

void ActionTable::Forget(ObjectId owner, const std::string& path) {
  const auto found = slots_.find({owner, Kept(path)});
  if (found == slots_.end()) return;
  for (auto i = static_cast<std::size_t>(found->second) - 1; records_[i].type != nullptr; ++i) {
    records_[i].type = nullptr;
  }
  slots_.erase(found);
}

ActionTable::Action ActionTable::Find(int id) const {
  if (id < 1 || static_cast<std::size_t>(id) > records_.size()) return {};
  const Record& record = records_[static_cast<std::size_t>(id) - 1];
  return {record.holder, record.path, record.type, std::string_view(uris_).substr(record.uri, record.uriLength)};
}

ActionTable::Slot ActionSlot(ObjectTexts& objects, const LocatedValue& owner, std::string_view path) {
  const std::size_t second = path.find('/', 1);
  LocatedValue action = Entry(objects, owner, path.substr(0, second));
  if (second != std::string_view::npos) action = Entry(objects, action, path.substr(second));
  return {owner.holder, owner.path + std::string(path), std::move(action)};
}

std::vector<ActionTable::Slot> ActionSlots(ObjectTexts& objects, const LocatedValue& owner,
                                           const DictionaryView& entries) {
  std::vector<ActionTable::Slot> slots;
  if (const std::string_view action = entries.Find("/A"); !action.empty()) {
    slots.push_back({owner.holder, owner.path + "/A", Resolve(objects, owner, action, "/A")});
  }
  const std::string_view additional = entries.Find("/AA");
  if (additional.empty()) return slots;
  const LocatedValue actions = Resolve(objects, owner, additional, "/AA");
  const DictionaryView triggers(actions.text);
  for (const DictionaryView::Entry& entry : triggers.Entries()) {
    const std::string trigger = UnescapedName(entry.key);
    slots.push_back({owner.holder, owner.path + "/AA" + trigger, Entry(objects, actions, triggers, trigger)});
  }
  return slots;
}

}  // namespace engine
