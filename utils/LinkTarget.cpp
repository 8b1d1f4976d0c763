// SPDX-License-Identifier: Apache-2.0
#include "utils/LinkTarget.h"

#include <algorithm>
#include <cstring>
#include <QByteArray>

namespace {

bool IsAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The text with what may stand in a URI alone (RFC 3986, clause 2 and appendix C).
QByteArray Encoded(const QString& text) {
  const QByteArray bytes = text.trimmed().toUtf8();
  QByteArray result;
  for (int i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\t' || c == '\n' || c == '\r') continue;  // a link that was broken over lines (appendix C)
    const bool escape = c == '%' && i + 2 < bytes.size() && IsHexDigit(bytes[i + 1]) && IsHexDigit(bytes[i + 2]);
    if (escape || IsAlpha(c) || IsDigit(c) || (c != '\0' && std::strchr("-._~:/?#[]@!$&'()*+,;=", c) != nullptr)) {
      result += c;
    } else {
      result += '%' + QByteArray(1, c).toHex().toUpper();
    }
  }
  return result;
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
      const QByteArray tail = at < 0 ? QByteArray() : path.mid(at);
      if (at >= 0) path.truncate(at);
      return tail;
    };
    fragment = cut(path.indexOf('#'));
    query = cut(path.indexOf('?'));
    const auto take = [this](int count) {
      const QByteArray head = path.left(count);
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

 private:
  static int SchemeLength(const QByteArray& text) {
    if (text.isEmpty() || !IsAlpha(text[0])) return 0;
    for (int i = 1; i < text.size(); ++i) {
      const char c = text[i];
      if (c == ':') return i + 1;
      if (!IsAlpha(c) && !IsDigit(c) && c != '+' && c != '-' && c != '.') return 0;
    }
    return 0;
  }
};

// RFC 3986, 5.2.4.
QByteArray WithoutDotSegments(QByteArray input) {
  QByteArray output;
  while (!input.isEmpty()) {
    if (input.startsWith("../")) {
      input.remove(0, 3);
    } else if (input.startsWith("./")) {
      input.remove(0, 2);
    } else if (input.startsWith("/./")) {
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

}  // namespace

bool IsRelativeLink(const QString& uri) {
  return Reference(Encoded(uri)).scheme.isEmpty();
}

std::optional<QString> ResolvedLink(const QString& base, const QString& uri) {
  Reference target(Encoded(uri));
  if (target.scheme.isEmpty()) {
    const Reference from(Encoded(base));
    // Against "mailto:" and the like nothing can be resolved.
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
