// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>
#include <string>

#include "host/links/ViewerRules.h"
#include "utils/DocumentLinks.h"

// A document's base URL, or the one to use instead of it.
struct LinkBase {
  QString text;
  ViewerRules::Base inViewers;
};

// A link of a document with where it leads.
struct ListedLink {
  ListedLink(const DocumentLink& found, const std::optional<LinkBase>& base);

  DocumentLink link;
  bool relative;
  std::optional<QString> target;  // by RFC 3986, 5.2; nothing for a relative link without a base
  ViewerRules::Targets viewers;
  bool agree;
};

// How links are printed. `file` is the file's name in bytes.
namespace LinkFormat {

// One JSON object and a line end.
std::string Json(const std::string& file, const ListedLink& link);
// A record as in RFC 4180; a null of the JSON form is an empty field.
std::string CsvHeader();
std::string Csv(const std::string& file, const ListedLink& link);
// For people: one line, or one for each place where viewers disagree.
std::string Table(const ListedLink& link);
// The line of a link whose file is missing.
std::string Missing(const ListedLink& link);

}  // namespace LinkFormat
