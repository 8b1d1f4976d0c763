// SPDX-License-Identifier: Apache-2.0
#include "engine/links/DocumentTrees.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "engine/links/DictionaryView.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

// Nodes still to be visited, and the objects that were.
class Agenda {
 public:
  explicit Agenda(ObjectTexts& objects) : objects_(objects) {}

  bool Empty() const { return nodes_.empty(); }
  LocatedValue Next() {
    LocatedValue node = std::move(nodes_.back());
    nodes_.pop_back();
    return node;
  }
  // The array's elements come next, in their order.
  void AddElements(const LocatedValue& array) {
    const auto end = static_cast<std::ptrdiff_t>(nodes_.size());
    std::size_t index = 0;
    for (const std::string_view element : ArrayElements(array.text)) {
      const std::optional<ObjectId> id = PdfLexer::FindReference(element);
      if (!id || visited_.insert(*id).second) {
        nodes_.push_back(Resolve(objects_, array, element, ElementStep(index)));
      }
      ++index;
    }
    std::reverse(nodes_.begin() + end, nodes_.end());
  }

 private:
  ObjectTexts& objects_;
  std::vector<LocatedValue> nodes_;
  std::set<ObjectId> visited_;
};

bool Has(const LocatedValue& dictionary, std::string_view key) {
  return !DictionaryView(dictionary.text).Find(key).empty();
}

}  // namespace

std::vector<ObjectId> ReadOutlineItems(ObjectTexts& objects, ObjectId catalog) {
  std::vector<ObjectId> items;
  std::set<ObjectId> visited;
  std::vector<ObjectId> following;  // the next items of the levels above
  const LocatedValue outlines = Entry(objects, LoadObject(objects, catalog), "/Outlines");
  std::optional<ObjectId> item = PdfLexer::FindReference(DictionaryView(outlines.text).Find("/First"));
  while (item || !following.empty()) {
    if (!item) {
      item = following.back();
      following.pop_back();
    }
    if (!visited.insert(*item).second) {
      item.reset();
      continue;
    }
    const LocatedValue value = LoadObject(objects, *item);
    const DictionaryView dictionary(value.text);
    if (IsDictionary(value.text)) items.push_back(value.holder);
    if (const auto next = PdfLexer::FindReference(dictionary.Find("/Next"))) following.push_back(*next);
    item = PdfLexer::FindReference(dictionary.Find("/First"));
  }
  return items;
}

std::vector<FormField> ReadFormFields(ObjectTexts& objects, ObjectId catalog) {
  std::vector<FormField> fields;
  Agenda agenda(objects);
  agenda.AddElements(Entry(objects, Entry(objects, LoadObject(objects, catalog), "/AcroForm"), "/Fields"));
  while (!agenda.Empty()) {
    LocatedValue node = agenda.Next();
    if (!IsDictionary(node.text)) continue;
    // Kids with a name are fields; the others are this field's widgets.
    Agenda kids(objects);
    const LocatedValue array = Entry(objects, node, "/Kids");
    kids.AddElements(array);
    FormField field{std::move(node), {}};
    bool group = false;
    while (!kids.Empty()) {
      LocatedValue kid = kids.Next();
      if (!IsDictionary(kid.text)) continue;
      group = group || Has(kid, "/T");
      field.widgets.push_back(std::move(kid));
    }
    if (group) {
      agenda.AddElements(array);
    } else {
      fields.push_back(std::move(field));
    }
  }
  return fields;
}

int CountEmbeddedFiles(ObjectTexts& objects, ObjectId catalog) {
  std::size_t pairs = 0;
  LocatedValue node = Entry(objects, Entry(objects, LoadObject(objects, catalog), "/Names"), "/EmbeddedFiles");
  for (Agenda agenda(objects);; node = agenda.Next()) {
    pairs += ArrayElements(Entry(objects, node, "/Names").text).size() / 2;
    agenda.AddElements(Entry(objects, node, "/Kids"));
    if (agenda.Empty()) return static_cast<int>(pairs);
  }
}

}  // namespace engine
