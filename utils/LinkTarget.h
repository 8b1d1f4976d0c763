// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <optional>
#include <QString>

/// Whether a link has no scheme, so that it needs a base URL (RFC 3986, 4.2). White space around it does not count.
bool IsRelativeLink(const QString& uri);

/// Where a link leads (RFC 3986, 5.2.2, strict): the link itself if it has a scheme, otherwise resolved against `base`.
///
/// "." and ".." segments are removed. Characters that no URI may have (spaces, backslashes, those outside ASCII and so
/// on; RFC 3986, clause 2) are percent-encoded as UTF-8, as is a "%" without two hexadecimal digits; white space around
/// either text is dropped. Nothing for a relative link when `base` is empty or relative itself.
std::optional<QString> ResolvedLink(const QString& base, const QString& uri);
