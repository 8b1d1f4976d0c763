// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/links/ActionTable.h"
#include "engine/links/DictionaryView.h"
#include "engine/links/DocumentTrees.h"
#include "engine/links/LocatedValue.h"
#include "engine/links/ObjectTexts.h"
#include "engine/save/Edits.h"

namespace engine {

class LoadedFile;

// The annotations, outline items and form fields of a document with their actions, and further facts of its catalog.
// Indexes and IDs count from 1; the IDs of actions and outline items hold as long as the object. What is damaged is
// left out. All members throw EngineError, kErrorBadArgument for an index or ID that is not there.
class DocumentLinks final : private ObjectTexts {
 public:
  struct Rectangle {
    double left = 0;  // in points
    double bottom = 0;
    double right = 0;
    double top = 0;
  };

  // Both must outlive this object. New URIs are among the edits after StoreChanges() only.
  DocumentLinks(LoadedFile& file, Edits& edits) : file_(file), edits_(edits) {}

  int AnnotationCount(int page);
  // 0 for an annotation without an action.
  int AnnotationAction(int page, int index);
  // /Subtype without its slash.
  std::string AnnotationSubtype(int page, int index);
  Rectangle AnnotationRectangle(int page, int index);

  int OutlineCount() { return static_cast<int>(Outlines().size()); }
  // UTF-8.
  std::string OutlineTitle(int id);
  int OutlineAction(int id);
  // The bytes of the URI; empty when the item has no URI action. Throws as ActionUri().
  std::string OutlineUri(int id);
  // Gives the item a URI action in place of any other one and of a destination. `uri` is ASCII.
  void SetOutlineUri(int id, const std::string& uri);

  int FieldCount() { return static_cast<int>(Fields().size()); }
  // `trigger` is "A" or a key of /AA.
  int FieldAction(int index, const std::string& trigger);

  // Without slash; empty for an ID that is not an action.
  std::string ActionType(int id);
  // The bytes of a URI action's /URI; empty for other actions. Throws kErrorDamaged as well when it is not a string.
  std::string ActionUri(int id);
  // `uri` is ASCII. Throws kErrorBadArgument as well for an action of another type.
  void SetActionUri(int id, const std::string& uri);

  int EmbeddedFileCount();
  bool Tagged();
  // A name in the catalog without its slash; empty when there is none.
  std::string CatalogName(std::string_view key);
  // The bytes of part 1 or 2 of a trailer's /ID.
  std::string IdentifierPart(const std::string& identifier, int part);

  // Puts the URIs that were set among the edits.
  void StoreChanges();

 private:
  std::string Text(ObjectId id) override;
  std::string FileText(ObjectId id);
  ObjectId Catalog();
  void OpenPage(int page);
  const LocatedValue& Annotation(int page, int index);
  const std::vector<ObjectId>& Outlines();
  LocatedValue Outline(int id);
  const std::vector<FormField>& Fields();
  // No value for what is not a string.
  std::optional<std::string> UriBytes(const ActionTable::Action& action);

  LoadedFile& file_;
  Edits& edits_;

  int page_ = 0;  // whose annotations are open; 0 for none
  LocatedValue annotations_;
  std::vector<std::string_view> elements_;
  int annotationIndex_ = 0;
  LocatedValue annotation_;
  DictionaryView annotationEntries_{{}};  // of annotation_

  std::optional<std::vector<ObjectId>> outlines_;
  std::optional<std::vector<FormField>> fields_;
  std::map<std::pair<int, std::string>, int> fieldActions_;
  ActionTable actions_;

  // The new text of /URI by the object and the path of the dictionary there.
  std::map<ObjectId, std::map<std::string, std::string>> changes_;
  std::set<ObjectId> unstored_;
};

}  // namespace engine
