// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <optional>
#include <QByteArray>

#include "host/links/WebUrl.h"

// Where PDF viewers lead for a link (URI action; ISO 32000-1, 12.6.4.7) in a document with or without a base URL. The
// rules follow what the viewers' engines do, not a standard: docs/viewers.md has their versions, and
// tests/viewers/measure compares rules and engines again. `uri` and `base` (the catalog's /URI /Base) are the bytes of
// the strings in the file: only MuPDF takes them as text strings with a byte order mark.
namespace ViewerRules {

// A base URL, parsed once for many links.
struct Base {
  Base() = default;  // none
  Base(const QByteArray& url);
  Base(const std::optional<QByteArray>& url) : Base(url ? Base(*url) : Base()) {}

  std::optional<QByteArray> bytes;
  std::optional<WebUrl> parsed;  // nothing for a base that pdf.js does not use
};

// Where a viewer leads; nothing where it makes no link of it.
using Target = std::optional<QByteArray>;

// Firefox.
Target PdfJs(const QByteArray& uri, const Base& base);
// Chrome and Edge.
Target Pdfium(const QByteArray& uri, const Base& base);
Target MuPdf(const QByteArray& uri, const Base& base);
// Evince and Okular.
Target Poppler(const QByteArray& uri, const Base& base);

// All of them; in this order everywhere.
constexpr std::array<const char*, 4> kViewers{"pdfjs", "pdfium", "mupdf", "poppler"};
using Targets = std::array<Target, kViewers.size()>;
Targets All(const QByteArray& uri, const Base& base);
// Whether all viewers make a link of it and lead to the same place. Places are compared as a browser parses them, so
// that a ".." in one and its result in the other do not differ.
bool Agree(const Targets& targets);

}  // namespace ViewerRules
