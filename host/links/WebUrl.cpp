// SPDX-License-Identifier: Apache-2.0
#include "host/links/WebUrl.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <QStringBuilder>
#include <QUrl>
#include <vector>

#include "utils/AsciiCharacters.h"

namespace {

bool IsSlash(char c) {
  return c == '/' || c == '\\';
}

// Controls, what is not ASCII and the characters of `more` as "%XX".
QByteArray Encoded(const QByteArray& text, const char* more) {
  QByteArray encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code > 0x7E || std::strchr(more, c) != nullptr) {
      encoded += Ascii::PercentEncoded(c);
    } else {
      encoded += c;
    }
  }
  return encoded;
}

constexpr char kInPath[] = " \"#<>?`{}";
constexpr char kInQuery[] = " \"#<>'";
constexpr char kInFragment[] = " \"<>`";
constexpr char kInUserInfo[] = " \"#<>?^`{}/:;=@[\\]|";

// Without the controls and spaces around it and the tabs and line ends within.
QByteArray Stripped(const QByteArray& text) {
  const auto isOuter = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  const auto* const begin = std::find_if_not(text.begin(), text.end(), isOuter);
  const auto end = std::find_if_not(std::make_reverse_iterator(text.end()), std::make_reverse_iterator(begin), isOuter);
  QByteArray stripped;
  std::copy_if(begin, end.base(), std::back_inserter(stripped),
               [](char c) { return c != '\t' && c != '\n' && c != '\r'; });
  return stripped;
}

// The scheme at the start, in lower case; empty when there is none.
QByteArray SchemeOf(const QByteArray& text) {
  const int colon = text.indexOf(':');
  if (colon < 1 || !Ascii::IsAlpha(text[0])) return {};
  const QByteArray scheme = text.left(colon);
  const bool valid = std::all_of(scheme.begin(), scheme.end(), [](char c) {
    return Ascii::IsAlpha(c) || Ascii::IsDigit(c) || c == '+' || c == '-' || c == '.';
  });
  return valid ? scheme.toLower() : QByteArray();
}

int DefaultPort(const QByteArray& scheme) {
  if (scheme == "http") return 80;
  if (scheme == "https") return 443;
  return 21;
}

QByteArray TakeFrom(QByteArray& text, char start) {
  const int at = text.indexOf(start);
  if (at < 0) return {};
  QByteArray taken = text.mid(at + 1);
  text.truncate(at);
  return taken;
}

bool IsDot(const QByteArray& segment) {
  return segment == "." || segment.toLower() == "%2e";
}
bool IsDoubleDot(const QByteArray& segment) {
  return segment.toLower().replace("%2e", ".") == "..";
}

// A decimal, octal (0…) or hexadecimal (0x…) number; nothing for anything else.
std::optional<std::uint64_t> AddressNumber(QByteArray text) {
  if (text.isEmpty()) return std::nullopt;
  int radix = 10;
  if (text.startsWith("0x") || text.startsWith("0X")) {
    radix = 16;
    text.remove(0, 2);
  } else if (text.size() > 1 && text[0] == '0') {
    radix = 8;
  }
  if (text.isEmpty()) return 0;
  bool valid = false;
  const std::uint64_t number = text.toULongLong(&valid, radix);
  return valid && text[0] != '+' && text[0] != '-' ? std::optional(number) : std::nullopt;
}

bool LooksLikeAddress(const QByteArray& host) {
  QByteArrayList parts = host.split('.');
  if (parts.size() > 1 && parts.last().isEmpty()) parts.removeLast();
  const QByteArray& last = parts.last();
  const bool digits = !last.isEmpty() && std::all_of(last.begin(), last.end(), Ascii::IsDigit);
  return digits || ((last.startsWith("0x") || last.startsWith("0X")) && AddressNumber(last));
}

// An IPv4 address in any of its spellings as four decimal numbers; empty for a wrong one.
QByteArray Address(const QByteArray& host) {
  QByteArrayList parts = host.split('.');
  if (parts.size() > 1 && parts.last().isEmpty()) parts.removeLast();
  if (parts.size() > 4) return {};
  std::uint64_t address = 0;
  for (int i = 0; i < parts.size(); ++i) {
    const std::optional<std::uint64_t> number = AddressNumber(parts[i]);
    const bool last = i == parts.size() - 1;
    const std::uint64_t limit = last ? std::uint64_t{1} << (8 * (5 - parts.size())) : 256;
    if (!number || *number >= limit) return {};
    address += last ? *number : *number << (8 * (3 - i));
  }
  QByteArrayList decimal;
  for (int shift = 24; shift >= 0; shift -= 8) decimal += QByteArray::number(static_cast<int>(address >> shift & 0xFF));
  return decimal.join('.');
}

// Empty for a host that no browser takes.
QByteArray ParsedHost(const QByteArray& text) {
  if (text.startsWith('[')) {
    const QUrl url(QString::fromLatin1("http://" + text + '/'), QUrl::StrictMode);
    return url.isValid() && text.endsWith(']') ? '[' + url.host().toLatin1() + ']' : QByteArray();
  }
  const QString decoded = QString::fromUtf8(QByteArray::fromPercentEncoding(text));
  QByteArray host = decoded.toLatin1().toLower();
  const bool isAscii = std::all_of(decoded.begin(), decoded.end(), [](QChar c) { return c.unicode() < 0x80; });
  if (!isAscii) host = QUrl::toAce(decoded.toLower());
  constexpr char kForbidden[] = " #/:<>?@[\\]^|%";
  for (const char c : host) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F || std::strchr(kForbidden, c) != nullptr) return {};
  }
  return !host.isEmpty() && LooksLikeAddress(host) ? Address(host) : host;
}

}  // namespace

std::optional<WebUrl> WebUrl::Parse(const QByteArray& text, const WebUrl* base) {
  QByteArray rest = Stripped(text);
  WebUrl url;
  url.scheme_ = SchemeOf(rest);
  if (url.scheme_.isEmpty()) return base != nullptr ? Relative(rest, *base) : std::nullopt;
  rest.remove(0, url.scheme_.size() + 1);
  if (url.IsOpaque()) {
    url.ParseQueryAndFragment(rest);
    url.opaque_ = Encoded(rest, "");
    return url;
  }
  if (url.scheme_ != "http" && url.scheme_ != "https" && url.scheme_ != "ftp") return std::nullopt;
  const bool hasAuthority = rest.size() > 1 && rest[0] == '/' && rest[1] == '/';
  if (base != nullptr && base->scheme_ == url.scheme_ && !hasAuthority) return Relative(rest, *base);
  const auto* const begin = std::find_if_not(rest.begin(), rest.end(), IsSlash);
  rest.remove(0, static_cast<int>(begin - rest.begin()));
  const auto* const end =
      std::find_if(rest.begin(), rest.end(), [](char c) { return IsSlash(c) || c == '?' || c == '#'; });
  const int length = static_cast<int>(end - rest.begin());
  if (!url.ParseAuthority(rest.left(length))) return std::nullopt;
  url.ParseTail(rest.mid(length));
  return url;
}

std::optional<WebUrl> WebUrl::Relative(QByteArray rest, const WebUrl& base) {
  WebUrl url = base;
  if (base.IsOpaque()) {
    if (!rest.startsWith('#')) return std::nullopt;
    url.fragment_ = '#' + Encoded(rest.mid(1), kInFragment);
    return url;
  }
  if (rest.size() > 1 && IsSlash(rest[0]) && IsSlash(rest[1]))
    return Parse(base.scheme_ + "://" + rest.mid(2), nullptr);
  url.fragment_.clear();
  if (rest.isEmpty()) return url;
  if (rest.startsWith('#') || rest.startsWith('?')) {
    if (rest.startsWith('?')) url.query_.clear();
    url.ParseQueryAndFragment(rest);
    return url;
  }
  url.query_.clear();
  if (IsSlash(rest[0])) {
    url.path_.clear();
  } else if (!url.path_.isEmpty()) {
    url.path_.removeLast();
  }
  url.ParseTail(rest);
  return url;
}

bool WebUrl::ParseAuthority(QByteArray authority) {
  const int at = authority.lastIndexOf('@');
  if (at >= 0) {
    const QByteArray info = authority.left(at);
    authority.remove(0, at + 1);
    const int colon = info.indexOf(':');
    userInfo_ = Encoded(colon < 0 ? info : info.left(colon), kInUserInfo);
    const QByteArray password = colon < 0 ? QByteArray() : Encoded(info.mid(colon + 1), kInUserInfo);
    if (!password.isEmpty()) userInfo_ += ':' + password;
    if (!userInfo_.isEmpty()) userInfo_ += '@';
  }
  const int colon = authority.indexOf(':', authority.indexOf(']') + 1);
  if (colon >= 0) {
    if (!ParsePort(authority.mid(colon + 1))) return false;
    authority.truncate(colon);
  }
  host_ = ParsedHost(authority);
  return !host_.isEmpty();
}

bool WebUrl::ParsePort(const QByteArray& text) {
  if (text.isEmpty()) return true;
  if (!std::all_of(text.begin(), text.end(), Ascii::IsDigit)) return false;
  bool valid = false;
  const int port = text.toUShort(&valid);
  if (valid && port != DefaultPort(scheme_)) port_ = ':' + QByteArray::number(port);
  return valid;
}

void WebUrl::ParseTail(QByteArray rest) {
  ParseQueryAndFragment(rest);
  ParsePath(rest);
}

// Takes query and fragment off the end of `rest`. Without one, the member keeps its value.
void WebUrl::ParseQueryAndFragment(QByteArray& rest) {
  const bool hasFragment = rest.contains('#');
  const QByteArray fragment = TakeFrom(rest, '#');
  if (hasFragment) fragment_ = '#' + Encoded(fragment, kInFragment);
  const bool hasQuery = rest.contains('?');
  const QByteArray query = TakeFrom(rest, '?');
  if (hasQuery) query_ = '?' + Encoded(query, kInQuery);
}

// Appends the segments to those of `path_`.
void WebUrl::ParsePath(const QByteArray& path) {
  QByteArrayList segments = QByteArray(path).replace('\\', '/').split('/');
  if (!path.isEmpty() && IsSlash(path[0])) segments.removeFirst();
  for (int i = 0; i < segments.size(); ++i) {
    const bool last = i == segments.size() - 1;
    if (IsDoubleDot(segments[i])) {
      if (!path_.isEmpty()) path_.removeLast();
      if (last) path_ += QByteArray();
    } else if (!IsDot(segments[i])) {
      path_ += Encoded(segments[i], kInPath);
    } else if (last) {
      path_ += QByteArray();
    }
  }
}

QByteArray WebUrl::Href() const {
  if (IsOpaque()) return scheme_ % ':' % opaque_ % query_ % fragment_;
  return scheme_ % "://" % userInfo_ % host_ % port_ % '/' % path_.join('/') % query_ % fragment_;
}
