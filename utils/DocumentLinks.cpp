// SPDX-License-Identifier: Apache-2.0
#include "utils/DocumentLinks.h"

#include <string>
#include <unordered_set>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryAnnotationTags.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"

namespace {

using Kind = DocumentLink::Kind;

// /A, and the trigger events of annotations and fields (ISO 32000-2, tables 197 and 199).
constexpr const wchar_t* kTriggers[] = {L"A",  L"E",  L"X",  L"D", L"U", L"Fo", L"Bl", L"PO",
                                        L"PC", L"PV", L"PI", L"K", L"F", L"V",  L"C"};

// The bytes that the information key returns; the text's own where the library does not have the key.
QByteArray Bytes(HalvexPDFLibraryCPDylibCPP1311& library, int key, const QString& text) {
  const std::wstring bytes = library.GetInformation(key);
  return bytes.empty() ? text.toUtf8() : QString::fromStdWString(bytes).toLatin1();
}

class LinkWalk {
 public:
  LinkWalk(HalvexPDFLibraryCPDylibCPP1311& library, const std::function<void(const DocumentLink&)>& visit)
      : library_(library), visit_(visit) {}

  int Run() {
    const int selected = library_.SelectedPage();
    const int pages = Checked(library_.PageCount());
    for (int page = 1; page <= pages; ++page) VisitPage(page);
    library_.SelectPage(selected);
    VisitOutlines();
    VisitFields();
    return error_;
  }

 private:
  // A result of 0 may mean that the call failed.
  int Checked(int result) {
    if (result == 0 && error_ == kErrorNone) error_ = library_.LastErrorCode();
    return result;
  }

  void VisitPage(int page) {
    if (Checked(library_.SelectPage(page)) == 0) return;
    const int count = Checked(library_.AnnotationCount());
    for (int index = 1; index <= count; ++index) {
      const int action = Checked(library_.GetAnnotActionID(index));
      if (action == 0) continue;
      const bool field = library_.GetAnnotStrProperty(index, kAnnotationSubtype) == L"Widget";
      VisitActions(field ? Kind::kField : Kind::kAnnotation, page, action);
    }
  }

  void VisitOutlines() {
    const int count = Checked(library_.OutlineCount());
    for (int index = 1; index <= count; ++index) {
      const int action = Checked(library_.GetOutlineActionID(library_.GetOutlineID(index)));
      if (action != 0) VisitActions(Kind::kOutline, 0, action);
    }
  }

  void VisitFields() {
    const int count = Checked(library_.FormFieldCount());
    for (int index = 1; index <= count; ++index) {
      for (const wchar_t* const trigger : kTriggers) {
        const int action = Checked(library_.GetFormFieldActionID(index, trigger));
        if (action != 0) VisitActions(Kind::kField, 0, action);
      }
    }
  }

  // An action and those that follow it: they have consecutive IDs.
  void VisitActions(Kind kind, int page, int action) {
    for (;; ++action) {
      const std::wstring type = library_.GetActionType(action);
      if (type.empty()) return;
      // A field that is its own widget has been visited on its page.
      if (kind == Kind::kField && !fieldActions_.insert(action).second) return;
      if (type == L"URI") VisitUri(kind, page, action);
    }
  }

  void VisitUri(Kind kind, int page, int action) {
    const QString uri = QString::fromStdWString(library_.GetActionURL(action));
    if (const int error = uri.isEmpty() ? library_.LastErrorCode() : kErrorNone; error != kErrorNone) {
      if (error != kErrorDamaged && error_ == kErrorNone) error_ = error;
      return;
    }
    visit_({kind, page, action, uri, Bytes(library_, kInformationActionUriBytes + action, uri)});
  }

  HalvexPDFLibraryCPDylibCPP1311& library_;
  const std::function<void(const DocumentLink&)>& visit_;
  std::unordered_set<int> fieldActions_;
  int error_ = kErrorNone;
};

}  // namespace

int VisitDocumentLinks(HalvexPDFLibraryCPDylibCPP1311& library, const std::function<void(const DocumentLink&)>& visit) {
  return LinkWalk(library, visit).Run();
}

QByteArray BaseUrlBytes(HalvexPDFLibraryCPDylibCPP1311& library) {
  return Bytes(library, kInformationBaseUrlBytes, QString::fromStdWString(library.GetBaseURL()));
}

int SetDocumentLink(HalvexPDFLibraryCPDylibCPP1311& library, const DocumentLink& link, const QString& uri) {
  return library.SetActionURL(link.action, uri.toStdWString()) != 0 ? 0 : library.LastErrorCode();
}
