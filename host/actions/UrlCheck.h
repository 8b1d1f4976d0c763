// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// What a user should know of a URL before it is written into documents.
struct UrlCheck {
  QString error;         // why no viewer can use it; empty for a usable one
  QStringList warnings;  // what works in some viewers only, or is written in another form
};

// Looks at an absolute URL (RFC 3986, 4.3) as it was typed. `isBase`: relative links are resolved against it, so a
// missing slash at its end is warned about.
UrlCheck CheckUrl(const QString& url, bool isBase);

// The URL as it stands in a document: characters outside ASCII as percent-encoded UTF-8 (RFC 3986, 2.5).
QString UrlAsWritten(const QString& url);
