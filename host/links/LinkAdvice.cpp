// SPDX-License-Identifier: Apache-2.0
#include "host/links/LinkAdvice.h"

#include <optional>

#include "host/links/ViewerRules.h"
#include "utils/DocumentLinks.h"
#include "utils/LinkTarget.h"

namespace {

bool LeadsElsewhere(const QByteArray& uri, const ViewerRules::Base& base) {
  const ViewerRules::Target inFirefox = ViewerRules::PdfJs(uri, base);
  const ViewerRules::Target inChrome = ViewerRules::Pdfium(uri, base);
  return !ViewerRules::Agree({inFirefox, inFirefox, inChrome, inChrome});
}

}  // namespace

std::string LinkAdvice(HalvexPDFLibraryCPDylibCPP1311& library, const QString& base) {
  const bool endsWithSlash = base.endsWith('/');
  // Parsed at the first relative link, because most documents have none.
  std::optional<ViewerRules::Base> from;
  std::optional<ViewerRules::Base> withSlash;
  int relative = 0;
  int elsewhere = 0;
  int elsewhereWithSlash = 0;
  VisitDocumentLinks(library, [&](const DocumentLink& link) {
    if (!IsRelativeLink(link.uri)) return;
    if (++relative == 1) {
      from.emplace(base.toUtf8());
      withSlash.emplace(base.toUtf8() + '/');
    }
    if (!LeadsElsewhere(link.bytes, *from)) return;
    ++elsewhere;
    if (endsWithSlash || LeadsElsewhere(link.bytes, *withSlash)) ++elsewhereWithSlash;
  });
  if (elsewhere == 0) return {};
  std::string advice = std::to_string(relative) + (relative == 1 ? " relative link, " : " relative links, ") +
                       std::to_string(elsewhere) + (elsewhere == 1 ? " leads elsewhere" : " lead elsewhere") +
                       " in Chrome than in Firefox";
  if (elsewhereWithSlash < elsewhere) advice += "; end the base URL with '/'";
  return advice;
}
