// SPDX-License-Identifier: Apache-2.0
#include "engine/document/DocumentLinks.h"

#include <algorithm>
#include <charconv>

#include "engine/base/EngineError.h"
#include "engine/base/Text.h"
#include "engine/document/LoadedFile.h"
#include "engine/links/DictionaryView.h"
#include "engine/links/UriChanges.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/TextString.h"

namespace engine {

namespace {

constexpr char kUriType[] = "URI";

void RequireIndex(int index, std::size_t count) {
  if (index < 1 || static_cast<std::size_t>(index) > count) {
    throw EngineError(kErrorBadArgument, "the document has nothing of this index");
  }
}

std::optional<double> NumberIn(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

std::string DocumentLinks::FileText(ObjectId id) {
  return file_.ObjectText(id).value_or("null");
}

std::string DocumentLinks::Text(ObjectId id) {
  const std::string* const edited = edits_.Find(id);
  return edited != nullptr ? *edited : FileText(id);
}

ObjectId DocumentLinks::Catalog() {
  const std::string* const edited = edits_.FindTrailer("/Root");
  try {
    return PdfLexer::ToReference(edited != nullptr ? *edited : file_.TrailerValue("/Root"));
  } catch (const PdfSyntaxError&) {
    return {};
  }
}

void DocumentLinks::OpenPage(int page) {
  if (page == page_) return;
  const std::vector<ObjectId>& pages = file_.Pages();
  RequireIndex(page, pages.size());
  page_ = 0;
  annotationIndex_ = 0;
  elements_.clear();
  annotations_ = Entry(*this, LoadObject(*this, pages[static_cast<std::size_t>(page) - 1]), "/Annots");
  elements_ = ArrayElements(annotations_.text);
  page_ = page;
}

int DocumentLinks::AnnotationCount(int page) {
  OpenPage(page);
  return static_cast<int>(elements_.size());
}

const LocatedValue& DocumentLinks::Annotation(int page, int index) {
  OpenPage(page);
  RequireIndex(index, elements_.size());
  if (index == annotationIndex_) return annotation_;
  const auto element = static_cast<std::size_t>(index) - 1;
  annotationIndex_ = 0;
  annotation_ = Resolve(*this, annotations_, elements_[element], ElementStep(element));
  annotationEntries_ = DictionaryView(annotation_.text);
  annotationIndex_ = index;
  return annotation_;
}

int DocumentLinks::AnnotationAction(int page, int index) {
  const LocatedValue& annotation = Annotation(page, index);
  std::vector<ActionTable::Slot> slots = ActionSlots(*this, annotation, annotationEntries_);
  return slots.empty() ? 0 : actions_.Register(*this, std::move(slots));
}

std::string DocumentLinks::AnnotationSubtype(int page, int index) {
  const LocatedValue& annotation = Annotation(page, index);
  return NameText(Entry(*this, annotation, annotationEntries_, "/Subtype").text);
}

DocumentLinks::Rectangle DocumentLinks::AnnotationRectangle(int page, int index) {
  const LocatedValue& annotation = Annotation(page, index);
  const LocatedValue array = Entry(*this, annotation, annotationEntries_, "/Rect");
  std::vector<double> numbers;
  for (const std::string_view element : ArrayElements(array.text)) {
    const std::optional<double> number = NumberIn(Resolve(*this, array, element, "").text);
    if (!number || numbers.size() == 4) return {};
    numbers.push_back(*number);
  }
  if (numbers.size() != 4) return {};
  return {std::min(numbers[0], numbers[2]), std::min(numbers[1], numbers[3]), std::max(numbers[0], numbers[2]),
          std::max(numbers[1], numbers[3])};
}

const std::vector<ObjectId>& DocumentLinks::Outlines() {
  if (!outlines_) outlines_ = ReadOutlineItems(*this, Catalog());
  return *outlines_;
}

LocatedValue DocumentLinks::Outline(int id) {
  RequireIndex(id, Outlines().size());
  return LoadObject(*this, (*outlines_)[static_cast<std::size_t>(id) - 1]);
}

std::string DocumentLinks::OutlineTitle(int id) {
  return Utf8FromTextString(StringBytes(Entry(*this, Outline(id), "/Title").text));
}

int DocumentLinks::OutlineAction(int id) {
  return actions_.Register(*this, {ActionSlot(*this, Outline(id), "/A")});
}

std::string DocumentLinks::OutlineUri(int id) {
  return ActionUri(OutlineAction(id));
}

void DocumentLinks::SetOutlineUri(int id, const std::string& uri) {
  const int action = OutlineAction(id);
  if (ActionType(action) == kUriType) {
    SetActionUri(action, uri);
    return;
  }
  StoreChanges();
  const LocatedValue item = Outline(id);
  std::optional<DictionaryText> dictionary = DictionaryText::Parse(item.text);
  if (!dictionary || !file_.IsInFile(item.holder)) throw EngineError(kErrorDamaged, "the outline item is damaged");
  dictionary->Remove("/Dest");
  dictionary->Set("/A", "<< /S /URI /URI " + LiteralString(uri) + " >>");
  edits_.Set(item.holder, dictionary->Text());
  actions_.Forget(item.holder, "/A");
}

const std::vector<FormField>& DocumentLinks::Fields() {
  if (!fields_) fields_ = ReadFormFields(*this, Catalog());
  return *fields_;
}

int DocumentLinks::FieldAction(int index, const std::string& trigger) {
  RequireIndex(index, Fields().size());
  if (trigger.empty()) throw EngineError(kErrorBadArgument, "a field's action has a trigger");
  const auto known = fieldActions_.find({index, trigger});
  if (known != fieldActions_.end()) return known->second;
  const FormField& field = (*fields_)[static_cast<std::size_t>(index) - 1];
  const std::string path = trigger == "A" ? "/A" : "/AA/" + trigger;
  std::vector<ActionTable::Slot> slots = {ActionSlot(*this, field.field, path)};
  for (const LocatedValue& widget : field.widgets) slots.push_back(ActionSlot(*this, widget, path));
  const int action = actions_.Register(*this, std::move(slots));
  if (action != 0) fieldActions_[{index, trigger}] = action;
  return action;
}

std::string DocumentLinks::ActionType(int id) {
  const ActionTable::Action action = actions_.Find(id);
  return action.type != nullptr ? *action.type : std::string();
}

std::optional<std::string> DocumentLinks::UriBytes(const ActionTable::Action& action) {
  if (IsString(action.uri)) return StringBytes(action.uri);
  if (!IsReference(action.uri)) return std::nullopt;
  const LocatedValue value = Resolve(*this, {action.holder, *action.path, {}}, action.uri, "/URI");
  return IsString(value.text) ? std::optional(StringBytes(value.text)) : std::nullopt;
}

std::string DocumentLinks::ActionUri(int id) {
  const ActionTable::Action action = actions_.Find(id);
  if (action.type == nullptr || *action.type != kUriType) return {};
  const auto changed = changes_.find(action.holder);
  if (changed != changes_.end()) {
    const auto uri = changed->second.find(*action.path);
    if (uri != changed->second.end() && uri->second != action.uri) return StringBytes(uri->second);
  }
  std::optional<std::string> uri = UriBytes(action);
  if (!uri) throw EngineError(kErrorDamaged, "the action has no URI");
  return *std::move(uri);
}

void DocumentLinks::SetActionUri(int id, const std::string& uri) {
  const ActionTable::Action action = actions_.Find(id);
  if (action.type == nullptr || *action.type != kUriType) {
    throw EngineError(kErrorBadArgument, "this is not a URI action");
  }
  if (!file_.IsInFile(action.holder)) throw EngineError(kErrorDamaged, "the action's object is not in the file");
  // A string of the same bytes stays as it is written.
  const bool same = UriBytes(action) == uri;
  changes_[action.holder][*action.path] = same ? std::string(action.uri) : LiteralString(uri);
  unstored_.insert(action.holder);
}

void DocumentLinks::StoreChanges() {
  for (const ObjectId holder : unstored_) {
    const std::string inFile = FileText(holder);
    std::string text = WithUris(Text(holder), changes_[holder]);
    if (text == inFile) {
      edits_.Reset(holder);
    } else {
      edits_.Set(holder, std::move(text));
    }
  }
  unstored_.clear();
}

int DocumentLinks::EmbeddedFileCount() {
  return CountEmbeddedFiles(*this, Catalog());
}

bool DocumentLinks::Tagged() {
  const LocatedValue mark = Entry(*this, LoadObject(*this, Catalog()), "/MarkInfo");
  return Entry(*this, mark, "/Marked").text == "true";
}

std::string DocumentLinks::CatalogName(std::string_view key) {
  return NameText(Entry(*this, LoadObject(*this, Catalog()), key).text);
}

std::string DocumentLinks::IdentifierPart(const std::string& identifier, int part) {
  const LocatedValue array = Resolve(*this, {}, identifier.empty() ? "null" : identifier, "");
  const std::vector<std::string_view> parts = ArrayElements(array.text);
  const auto index = static_cast<std::size_t>(part) - 1;
  return index < parts.size() ? StringBytes(Resolve(*this, array, parts[index], "").text) : std::string();
}

}  // namespace engine
