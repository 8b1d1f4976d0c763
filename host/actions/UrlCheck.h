// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// What a user should know of a URL before it is written into documents.
struct UrlCheck {
  QString error;         // why no viewer can use it; empty for a usable one
  QStringList warnings;  // what works in some viewers only, or is written in another form
};

// What relative links have to do with a URL.
enum class UrlUse {
  kOther,          // nothing
  kBaseOfViewers,  // viewers resolve links against it, each in its own way
  kBaseOfAction    // the action resolves links against it (RFC 3986, 5)
};

// Looks at an absolute URL (RFC 3986, 4.3) as it was typed.
UrlCheck CheckUrl(const QString& url, UrlUse use);

// The URL as it is written into a document: characters outside ASCII as percent-encoded UTF-8 (RFC 3986, 2.5).
QString UrlAsWritten(const QString& url);
