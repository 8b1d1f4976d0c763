// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <optional>
#include <QString>

/// Whether a link has no scheme, so that it needs a base URL (RFC 3986, 4.2). White space around it does not count.
bool IsRelativeLink(const QString& uri);

/// Where a link leads (RFC 3986, 5.2.2, strict): the link itself if it has a scheme, otherwise resolved against `base`.
///
/// "." and ".." segments are removed. Characters that a URI cannot have (spaces, backslashes, those outside ASCII and
/// so on; RFC 3986, clause 2) are percent-encoded as UTF-8, as is a "%" without two hexadecimal digits. White space
/// around either text is dropped. No value for a relative link when `base` is empty or relative itself.
std::optional<QString> ResolvedLink(const QString& base, const QString& uri);

/// The link with only the percent-encoding as above; it is not resolved.
QString EncodedLink(const QString& uri);

/// The normal form, which is the same for equivalent links (RFC 3986, 6.2.2 and 6.2.3): scheme and host in lower
/// case, no empty or default port (http, https, ftp), "/" for an empty path after a host, no needless percent-encodings
/// and the others in capitals. Encoded as above. A relative link is not resolved.
QString NormalizedLink(const QString& uri);
