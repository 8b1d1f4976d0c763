// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// Problems of a URL that a user should know before it is written into documents.
struct UrlCheck {
  QString error;         // why no viewer can use it; empty for a usable one
  QStringList warnings;  // what works in some viewers only, or will be written in another form
};

// How relative links depend on a URL.
enum class UrlUse {
  kOther,          // not at all
  kBaseOfViewers,  // viewers resolve links against it, each in its own way
  kBaseOfAction    // the action resolves links against it (RFC 3986, 5)
};

// Checks an absolute URL (RFC 3986, 4.3) as it was typed.
UrlCheck CheckUrl(const QString& url, UrlUse use);

// The URL as it is written into a document: characters outside ASCII as percent-encoded UTF-8 (RFC 3986, 2.5).
QString UrlAsWritten(const QString& url);
