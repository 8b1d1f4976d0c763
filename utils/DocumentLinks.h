// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <functional>
#include <QByteArray>
#include <QString>

class HalvexPDFLibraryCPDylibCPP1311;

/// A URI action (ISO 32000-2, 12.6.4.8) of a document and where it is.
struct DocumentLink {
  /// What the action belongs to.
  enum class Kind {
    kAnnotation,  ///< of an annotation that is not a form field
    kOutline,     ///< of an outline item
    kField        ///< of a form field, or of its widget on a page
  };
  Kind kind = Kind::kAnnotation;  ///< what the action belongs to
  int page = 0;                   ///< from 1; 0 for outline items and for fields that are on no page
  int action = 0;  ///< for GetActionURL() and SetActionURL(); valid until the document is removed or saved onto itself
  QString uri;     ///< its text in the file
  /// The string's bytes in the file, as most viewers take it. They differ from `uri` for UTF-16 and PDFDocEncoding.
  QByteArray bytes;

  /// Whether the string is neither ASCII nor UTF-8 without a byte order mark; viewers read it differently then.
  bool HasOtherEncoding() const { return bytes != uri.toUtf8(); }
};

/// Visits every link of the library's selected document: page by page in the order of the annotations, then the outline
/// items, then the fields that are on no page. URI actions of the document or of a page as such (/OpenAction, and /AA
/// of either) are not visited. Each place is visited once; an action that several annotations share is visited for each
/// of them. `visit` may change the link with SetDocumentLink(), but not select another page or document. The selected
/// page is restored afterwards.
///
/// A URI action without a string for its URI is not a link: viewers ignore it, or differ. Returns 0, or the
/// LastErrorCode() of the first part that could not be read; the other parts are visited all the same.
int VisitDocumentLinks(HalvexPDFLibraryCPDylibCPP1311& library, const std::function<void(const DocumentLink&)>& visit);

/// The bytes of the selected document's base URL in the file; for most documents, those of GetBaseURL() as UTF-8.
QByteArray BaseUrlBytes(HalvexPDFLibraryCPDylibCPP1311& library);

/// Gives the link another URI; stored with the next save. Returns 0, or the LastErrorCode().
int SetDocumentLink(HalvexPDFLibraryCPDylibCPP1311& library, const DocumentLink& link, const QString& uri);
