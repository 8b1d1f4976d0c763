// SPDX-License-Identifier: Apache-2.0
#include "make-links-absolute/CMakeLinksAbsolute.h"

#include <optional>
#include <QStringList>

#include "make-links-absolute/CMakeLinksAbsoluteDialog.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryInformationKeys.h"
#include "plugin/ShowSettingsDialog.h"
#include "plugin/WorkProcInfoStruct.h"
#include "utils/DocumentLinks.h"
#include "utils/LinkTarget.h"

namespace {

// The link's new text; no value for a relative link without a base URL. A link that stays is only rewritten in ASCII,
// if viewers read its string in different encodings.
std::optional<QString> NewUri(const QString& base, const DocumentLink& link) {
  const bool stays = link.uri.startsWith('#') || !IsRelativeLink(link.uri);
  if (!stays) return ResolvedLink(base, link.uri);
  return link.HasOtherEncoding() ? EncodedLink(link.uri) : link.uri;
}

void Warn(HalvexPDFLibraryCPDylibCPP1311& document, int left, bool unread) {
  QStringList warnings;
  if (left > 0) {
    warnings += left == 1 ? QString("1 relative link has no base URL and stays relative")
                          : QString("%1 relative links have no base URL and stay relative").arg(left);
  }
  if (unread) warnings += QString("some links could not be read");
  if (warnings.isEmpty()) return;
  const QString earlier = QString::fromStdWString(document.GetInformation(kInformationWarnings));
  if (!earlier.isEmpty()) warnings.prepend(earlier);
  document.SetInformation(kInformationWarnings, warnings.join('\n').toStdWString());
}

}  // namespace

int CMakeLinksAbsolute::WorkProc(WorkProcInfoStruct* info) {
  HalvexPDFLibraryCPDylibCPP1311& document = *info->document;
  QString base = info->settings->value(QString("base")).toString().trimmed();
  if (base.isEmpty()) base = QString::fromStdWString(document.GetBaseURL());

  int left = 0;
  bool anchors = false;  // links such as "#top"; they stay, and still need the base URL
  std::optional<DocumentLink> failed;
  const int error = VisitDocumentLinks(document, [&](const DocumentLink& link) {
    if (failed) return;
    anchors = anchors || link.uri.startsWith('#');
    const std::optional<QString> target = NewUri(base, link);
    if (!target) {
      ++left;
    } else if (*target != link.uri || link.HasOtherEncoding()) {
      if (SetDocumentLink(document, link, *target) != 0) failed = link;
    }
  });
  // Once more, so that the failed call is the last one: a host looks at the last error only.
  if (failed) {
    SetDocumentLink(document, *failed, NewUri(base, *failed).value_or(QString()));
    return 0;
  }
  const bool done = left == 0 && error == 0 && !anchors;
  if (done && info->settings->value(QString("removeBase")).toBool()) document.SetBaseURL(std::wstring());
  Warn(document, left, error != 0);
  return 0;
}

int CMakeLinksAbsolute::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  // An empty field means the document's own base URL.
  return ShowSettingsDialog<CMakeLinksAbsoluteDialog>(*this, parent, info, [](auto&, auto&) {});
}
