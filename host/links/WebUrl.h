// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QByteArray>
#include <QByteArrayList>

// A URL as browsers parse it (the URL standard of the WHATWG, clauses 4.4 and 4.5): more lenient than RFC 3986, so that
// backslashes count as slashes, spaces are encoded, and dots at the start of a path go nowhere. For the schemes that
// pdf.js follows: http, https and ftp with a host, mailto and tel.
class WebUrl {
 public:
  // `text` is UTF-8. A relative one is resolved against `base`, which may be null. Nothing for a text that a browser
  // refuses, and for other schemes.
  static std::optional<WebUrl> Parse(const QByteArray& text, const WebUrl* base);

  // As a browser's address bar would have it; ASCII.
  QByteArray Href() const;

 private:
  bool IsOpaque() const { return scheme_ == "mailto" || scheme_ == "tel"; }
  bool ParseAuthority(QByteArray authority);
  bool ParsePort(const QByteArray& text);
  void ParsePath(const QByteArray& path);
  // What follows the authority: path, query and fragment.
  void ParseTail(QByteArray rest);
  void ParseQueryAndFragment(QByteArray& rest);
  static std::optional<WebUrl> Relative(QByteArray rest, const WebUrl& base);

  QByteArray scheme_;
  QByteArray userInfo_;  // with its "@"
  QByteArray host_;
  QByteArray port_;  // with its ":"
  QByteArrayList path_;
  QByteArray query_;     // with its "?"
  QByteArray fragment_;  // with its "#"
  QByteArray opaque_;
};
