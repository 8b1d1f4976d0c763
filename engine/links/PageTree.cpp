// SPDX-License-Identifier: Apache-2.0
#include "engine/links/PageTree.h"

#include <string_view>
#include <unordered_set>
#include <utility>

#include "engine/links/DictionaryView.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

constexpr std::size_t kDeepest = 100;

class PageTreeWalk {
 public:
  explicit PageTreeWalk(ObjectTexts& objects) : objects_(objects) {}

  // Throws PdfSyntaxError.
  void Visit(std::string_view reference, std::size_t depth) {
    const ObjectId id = PdfLexer::ToReference(reference);
    if (depth > kDeepest || !seen_.insert(id.number).second) throw PdfSyntaxError();
    const std::string text = objects_.Text(id);
    const DictionaryView node(text);
    const std::string_view kids = node.Find("/Kids");
    if (kids.empty()) {
      if (node.Find("/Type") != "/Page") throw PdfSyntaxError();
      pages_.push_back(id);
      return;
    }
    if (node.Find("/Type") != "/Pages" || (depth == 0 && !node.Find("/Parent").empty())) throw PdfSyntaxError();
    const std::string indirect = IsReference(kids) ? objects_.Text(PdfLexer::ToReference(kids)) : std::string();
    const std::string_view array = indirect.empty() ? kids : std::string_view(indirect);
    if (!IsArray(array)) throw PdfSyntaxError();
    for (const std::string_view kid : ArrayElements(array)) Visit(kid, depth + 1);
  }

  std::vector<ObjectId> TakePages() { return std::move(pages_); }

 private:
  ObjectTexts& objects_;
  std::unordered_set<std::uint32_t> seen_;
  std::vector<ObjectId> pages_;
};

}  // namespace

std::optional<std::vector<ObjectId>> ReadPageTree(ObjectTexts& objects, ObjectId catalog) {
  try {
    const std::string text = objects.Text(catalog);
    PageTreeWalk walk(objects);
    walk.Visit(DictionaryView(text).Find("/Pages"), 0);
    return walk.TakePages();
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

}  // namespace engine
