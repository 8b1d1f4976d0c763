// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/SignatureSearch.h"

#include <set>
#include <utility>
#include <vector>

namespace engine {

namespace {

int CountSignedFields(QPDFObjectHandle form) {
  struct Field {
    QPDFObjectHandle object;
    bool signature;  // the field type inherited
  };
  std::vector<Field> pending;
  std::set<QPDFObjGen> seen;
  const auto add = [&](QPDFObjectHandle fields, bool signature) {
    if (!fields.isArray()) return;
    for (const QPDFObjectHandle& field : fields.getArrayAsVector()) {
      // Direct fields are against the standard; they cannot form a loop.
      if (!field.isIndirect() || seen.insert(field.getObjGen()).second) pending.push_back({field, signature});
    }
  };
  if (form.isDictionary()) add(form.getKey("/Fields"), false);

  int count = 0;
  while (!pending.empty()) {
    Field field = pending.back();
    pending.pop_back();
    if (!field.object.isDictionary()) continue;
    QPDFObjectHandle type = field.object.getKey("/FT");
    if (type.isName()) field.signature = type.getName() == "/Sig";
    if (field.signature && field.object.getKey("/V").isDictionary()) ++count;
    add(field.object.getKey("/Kids"), field.signature);
  }
  return count;
}

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

BackendDocument::Signatures SearchSignatures(QPDF& document) {
  QPDFObjectHandle catalog = document.getRoot();
  return {CountSignedFields(catalog.getKey("/AcroForm")), CertificationLevel(catalog.getKey("/Perms"))};
}

}  // namespace engine
