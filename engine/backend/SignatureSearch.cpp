// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/SignatureSearch.h"

#include <set>
#include <utility>
#include <vector>

#include "engine/backend/PageSearch.h"

namespace engine {

namespace {

class Search {
 public:
  Search(QPDF& document, SearchDepth depth) : document_(document), everywhere_(depth == SearchDepth::kEverywhere) {}

  int Count() {
    QPDFObjectHandle catalog = document_.getRoot();
    QPDFObjectHandle form = catalog.getKey("/AcroForm");
    NoteUnreadable(form);
    if (form.isDictionary()) AddFields(form.getKey("/Fields"), false);
    if (everywhere_) AddWidgets(catalog);
    VisitFields();
    QPDFObjectHandle permissions = catalog.getKey("/Perms");
    NoteUnreadable(permissions);
    if (permissions.isDictionary()) {
      for (const char* const key : {"/DocMDP", "/UR3", "/UR"}) {
        QPDFObjectHandle signature = permissions.getKey(key);
        NoteUnreadable(signature);
        if (signature.isDictionary()) AddValue(signature);
      }
    }
    if (everywhere_) AddAllObjects();
    return count_;
  }

 private:
  struct Field {
    QPDFObjectHandle object;
    bool signature;  // the field type inherited
  };

  // A reference to nothing: the lost object may have been a signature.
  void NoteUnreadable(QPDFObjectHandle object) {
    if (everywhere_ && object.isIndirect() && object.isNull()) ++count_;
  }

  void AddFields(QPDFObjectHandle fields, bool signature) {
    NoteUnreadable(fields);
    if (!fields.isArray()) return;
    for (const QPDFObjectHandle& field : fields.getArrayAsVector()) {
      NoteUnreadable(field);
      // Direct fields are against the standard; they cannot form a loop.
      if (!field.isIndirect() || seen_.insert(field.getObjGen()).second) pending_.push_back({field, signature});
    }
  }

  void AddWidgets(QPDFObjectHandle catalog) {
    VisitPageTree(catalog, [this](QPDFObjectHandle node) {
      if (node.isDictionary()) AddFields(node.getKey("/Annots"), false);
      return true;
    });
  }

  void VisitFields() {
    while (!pending_.empty()) {
      Field field = pending_.back();
      pending_.pop_back();
      if (!field.object.isDictionary()) continue;
      QPDFObjectHandle type = field.object.getKey("/FT");
      if (type.isName()) field.signature = type.getName() == "/Sig";
      QPDFObjectHandle value = field.object.getKey("/V");
      if (field.signature) NoteUnreadable(value);
      if (field.signature && value.isDictionary()) {
        values_.insert(value.getObjGen());
        ++count_;
      }
      AddFields(field.object.getKey("/Kids"), field.signature);
    }
  }

  // A signature that is not the value of a field.
  void AddValue(QPDFObjectHandle signature) {
    if (!signature.isIndirect() || values_.insert(signature.getObjGen()).second) ++count_;
  }

  void AddAllObjects() {
    for (QPDFObjectHandle& object : document_.getAllObjects()) {
      if (!object.isDictionary() || !object.hasKey("/ByteRange") || !object.hasKey("/Contents")) continue;
      QPDFObjectHandle type = object.getKey("/Type");
      if (!type.isName() || type.getName() == "/Sig" || type.getName() == "/DocTimeStamp") AddValue(object);
    }
  }

  QPDF& document_;
  const bool everywhere_;
  std::vector<Field> pending_;
  std::set<QPDFObjGen> seen_;
  std::set<QPDFObjGen> values_;
  int count_ = 0;
};

// ISO 32000-1, 12.8.4 and table 254.
int CertificationLevel(QPDFObjectHandle permissions) {
  if (!permissions.isDictionary()) return 0;
  QPDFObjectHandle signature = permissions.getKey("/DocMDP");
  if (!signature.isDictionary()) return 0;
  constexpr int kDefaultLevel = 2;
  QPDFObjectHandle references = signature.getKey("/Reference");
  if (!references.isArray()) return kDefaultLevel;
  for (QPDFObjectHandle reference : references.getArrayAsVector()) {
    if (!reference.isDictionary() || !reference.getKey("/TransformMethod").isNameAndEquals("/DocMDP")) continue;
    QPDFObjectHandle parameters = reference.getKey("/TransformParams");
    if (!parameters.isDictionary()) continue;
    QPDFObjectHandle level = parameters.getKey("/P");
    if (level.isInteger() && level.getIntValue() >= 1 && level.getIntValue() <= 3) return level.getIntValueAsInt();
  }
  return kDefaultLevel;
}

}  // namespace

BackendDocument::Signatures SearchSignatures(QPDF& document, SearchDepth depth) {
  return {Search(document, depth).Count(), CertificationLevel(document.getRoot().getKey("/Perms"))};
}

}  // namespace engine
