// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <qpdf/QPDF.hh>
#include <string>

namespace engine {

// Visits the nodes of a catalog's page tree, each indirect one once, and the references to them that lead nowhere.
// Stops when `visit` returns false.
void VisitPageTree(QPDFObjectHandle catalog, const std::function<bool(QPDFObjectHandle node)>& visit);

// Whether a catalog's page tree has a page.
bool LeadsToPage(QPDFObjectHandle catalog);

// Whether the dictionary is damaged: the parser makes keys up for values that have none.
bool HasInventedKeys(QPDFObjectHandle dictionary);
bool IsInventedKey(const std::string& key);

// Whether an object may be a new version of another.
bool SameKind(QPDFObjectHandle one, QPDFObjectHandle other);

// How much of a document can be reached from the entries of its trailer.
struct ReachableObjects {
  std::size_t objects = 0;  // indirect ones that are there
  std::size_t pages = 0;

  static ReachableObjects Of(QPDF& document);
  bool HasAllOf(const ReachableObjects& other) const { return objects >= other.objects && pages >= other.pages; }
};

// Calls `visit` for every indirect object that can be reached from the entries of the document's trailer.
void VisitReachable(QPDF& document, const std::function<void(QPDFObjectHandle object)>& visit);

}  // namespace engine
