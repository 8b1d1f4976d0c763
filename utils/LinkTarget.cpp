// SPDX-License-Identifier: Apache-2.0
#include "utils/LinkTarget.h"

#include <algorithm>
#include <cstring>
#include <QByteArray>

#include "utils/AsciiCharacters.h"

namespace {

bool MayBeInUri(char c) {
  return Ascii::IsAlpha(c) || Ascii::IsDigit(c) || (c != '\0' && std::strchr("-._~:/?#[]@!$&'()*+,;=", c) != nullptr);
}

// The text with only the characters that a URI may have (RFC 3986, clause 2 and appendix C).
QByteArray Encoded(const QString& text) {
  QByteArray bytes = text.trimmed().toUtf8();
  if (std::all_of(bytes.cbegin(), bytes.cend(), MayBeInUri)) return bytes;  // most are
  QByteArray result;
  for (int i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\t' || c == '\n' || c == '\r') continue;  // the link was broken over several lines (appendix C)
    const bool escape =
        c == '%' && i + 2 < bytes.size() && Ascii::IsHexDigit(bytes[i + 1]) && Ascii::IsHexDigit(bytes[i + 2]);
    if (escape || MayBeInUri(c)) {
      result += c;
    } else {
      result += Ascii::PercentEncoded(c);
    }
  }
  return result;
}

// The length of the scheme at the start, with its colon; 0 for none.
int SchemeLength(const QByteArray& text) {
  if (text.isEmpty() || !Ascii::IsAlpha(text[0])) return 0;
  for (int i = 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ':') return i + 1;
    if (!Ascii::IsAlpha(c) && !Ascii::IsDigit(c) && c != '+' && c != '-' && c != '.') return 0;
  }
  return 0;
}

// A URI reference by its components (RFC 3986, appendix B); the optional ones with their delimiters, so that an empty
// component and none differ.
struct Reference {
  QByteArray scheme;     // with ":"
  QByteArray authority;  // with "//"
  QByteArray path;
  QByteArray query;     // with "?"
  QByteArray fragment;  // with "#"

  explicit Reference(const QByteArray& text) : path(text) {
    const auto cut = [this](int at) {
      QByteArray tail = at < 0 ? QByteArray() : path.mid(at);
      if (at >= 0) path.truncate(at);
      return tail;
    };
    fragment = cut(path.indexOf('#'));
    query = cut(path.indexOf('?'));
    const auto take = [this](int count) {
      QByteArray head = path.left(count);
      path.remove(0, count);
      return head;
    };
    scheme = take(SchemeLength(path));
    if (path.startsWith("//")) {
      const int end = path.indexOf('/', 2);
      authority = take(end < 0 ? path.size() : end);
    }
  }
  QByteArray Text() const { return scheme + authority + path + query + fragment; }
};

// RFC 3986, 5.2.4.
QByteArray WithoutDotSegments(QByteArray input) {
  if (!input.startsWith('.') && !input.contains("/.")) return input;
  QByteArray output;
  while (!input.isEmpty()) {
    if (input.startsWith("../")) {
      input.remove(0, 3);
    } else if (input.startsWith("./") || input.startsWith("/./")) {
      input.remove(0, 2);
    } else if (input == "/.") {
      input = "/";
    } else if (input.startsWith("/../") || input == "/..") {
      input = "/" + input.mid(4);
      output.truncate(std::max(output.lastIndexOf('/'), 0));
    } else if (input == "." || input == "..") {
      input.clear();
    } else {
      const int end = input.indexOf('/', 1);
      output += end < 0 ? input : input.left(end);
      input.remove(0, end < 0 ? input.size() : end);
    }
  }
  return output;
}

// RFC 3986, 5.2.3.
QByteArray Merged(const Reference& base, const QByteArray& path) {
  if (!base.authority.isEmpty() && base.path.isEmpty()) return "/" + path;
  return base.path.left(base.path.lastIndexOf('/') + 1) + path;
}

// Percent-encodings of characters that need none are undone, the others are written in capitals (RFC 3986, 6.2.2).
QByteArray WithPlainEncodings(const QByteArray& text) {
  QByteArray result;
  for (int i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    const char c = QByteArray::fromHex(text.mid(i + 1, 2)).at(0);
    const bool unreserved = Ascii::IsAlpha(c) || Ascii::IsDigit(c) || (c != '\0' && std::strchr("-._~", c) != nullptr);
    result += unreserved ? QByteArray(1, c) : text.mid(i, 3).toUpper();
    i += 2;
  }
  return result;
}

// An authority with its host in lower case and without an empty or default port; user information stays.
QByteArray WithPlainHost(const QByteArray& authority, const QByteArray& scheme) {
  const int host = std::max(authority.lastIndexOf('@') + 1, 2);
  QByteArray result = authority.left(host) + authority.mid(host).toLower();
  const int colon = result.lastIndexOf(':');
  if (colon < host || result.indexOf(']', colon) >= 0) return result;
  const QByteArray port = result.mid(colon + 1);
  const bool isDefault = (scheme == "http:" && port == "80") || (scheme == "https:" && port == "443") ||
                         (scheme == "ftp:" && port == "21");
  if (port.isEmpty() || isDefault) result.truncate(colon);
  return result;
}

}  // namespace

bool IsRelativeLink(const QString& uri) {
  return SchemeLength(Encoded(uri)) == 0;
}

std::optional<QString> ResolvedLink(const QString& base, const QString& uri) {
  Reference target(Encoded(uri));
  if (target.scheme.isEmpty()) {
    const Reference from(Encoded(base));
    // A base such as "mailto:" has no path to resolve against.
    if (from.scheme.isEmpty() || (from.authority.isEmpty() && !from.path.startsWith('/'))) return std::nullopt;
    target.scheme = from.scheme;
    if (target.authority.isEmpty()) {
      target.authority = from.authority;
      if (target.path.isEmpty()) {
        target.path = from.path;
        if (target.query.isEmpty()) target.query = from.query;
      } else if (!target.path.startsWith('/')) {
        target.path = Merged(from, target.path);
      }
    }
  }
  target.path = WithoutDotSegments(target.path);
  return QString::fromLatin1(target.Text());
}

QString EncodedLink(const QString& uri) {
  return QString::fromLatin1(Encoded(uri));
}

QString NormalizedLink(const QString& uri) {
  Reference link(WithPlainEncodings(Encoded(uri)));
  link.scheme = link.scheme.toLower();
  if (!link.authority.isEmpty()) {
    link.authority = WithPlainEncodings(WithPlainHost(link.authority, link.scheme));
    if (link.path.isEmpty()) link.path = "/";
  }
  if (!link.scheme.isEmpty()) link.path = WithoutDotSegments(link.path);
  return QString::fromLatin1(link.Text());
}
