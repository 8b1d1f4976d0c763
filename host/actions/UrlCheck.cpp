// SPDX-License-Identifier: Apache-2.0
#include "host/actions/UrlCheck.h"

#include <algorithm>
#include <cstring>
#include <QUrl>

#include "utils/AsciiCharacters.h"

namespace {

bool IsDrivePath(const QByteArray& url) {
  return url.size() > 1 && Ascii::IsAlpha(url[0]) && url[1] == ':' &&
         (url.size() == 2 || url[2] == '\\' || url[2] == '/');
}

bool HasScheme(const QByteArray& url) {
  const auto* const colon = std::find(url.begin(), url.end(), ':');
  return colon != url.end() && Ascii::IsAlpha(url[0]) && std::all_of(url.begin(), colon, [](char c) {
           return Ascii::IsAlpha(c) || Ascii::IsDigit(c) || c == '+' || c == '.' || c == '-';
         });
}

bool IsSpaceOrControl(char c) {
  return (c >= 0 && c <= ' ') || c == 0x7F;
}

bool HasWrongEscape(const QByteArray& url) {
  for (int at = url.indexOf('%'); at >= 0; at = url.indexOf('%', at + 1)) {
    if (at + 2 >= url.size() || !Ascii::IsHexDigit(url[at + 1]) || !Ascii::IsHexDigit(url[at + 2])) return true;
  }
  return false;
}

QString FindError(const QString& url) {
  const QByteArray bytes = url.toUtf8();
  if (IsDrivePath(bytes)) return QStringLiteral("it is a path on a drive, not a URL");
  if (!HasScheme(bytes)) return QStringLiteral("it has no scheme, such as https://");
  const auto* const bad = std::find_if(bytes.begin(), bytes.end(), [](char c) {
    return IsSpaceOrControl(c) || std::strchr("\"<>\\^`{|}", c) != nullptr;
  });
  if (bad != bytes.end()) {
    return IsSpaceOrControl(*bad)
               ? QStringLiteral("it has a space or a control character; write a space as %20")
               : QStringLiteral("it has the character %1, which no URL may hold").arg(QLatin1Char(*bad));
  }
  if (HasWrongEscape(bytes)) return QStringLiteral("it has a '%' without two hexadecimal digits after it");
  const QUrl parsed(url, QUrl::StrictMode);
  if (!parsed.isValid()) return QStringLiteral("it is not a valid URL");
  const bool isWeb = parsed.scheme() == QLatin1String("http") || parsed.scheme() == QLatin1String("https");
  if (isWeb && parsed.host().isEmpty()) return QStringLiteral("it names no host");
  return {};
}

bool IsAscii(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
}

}  // namespace

QString UrlAsWritten(const QString& url) {
  QByteArray written;
  for (const char byte : url.toUtf8()) {
    written += static_cast<unsigned char>(byte) < 0x80 ? QByteArray(1, byte) : Ascii::PercentEncoded(byte);
  }
  return QString::fromLatin1(written);
}

namespace {

// Warnings about usable URLs that are probably mistakes.
QStringList OddParts(const QString& url) {
  static const QStringList usual{QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file"),
                                 QStringLiteral("ftp")};
  const QUrl parsed(url);
  QStringList odd;
  if (!usual.contains(parsed.scheme())) {
    odd += QStringLiteral("not every viewer follows links with the scheme '%1:'").arg(parsed.scheme());
  }
  if (!parsed.password().isEmpty()) odd += QStringLiteral("it has a password, which every reader of the file can see");
  return odd;
}

QStringList OddBase(const QString& url, UrlUse use) {
  const QString last = url.section(QLatin1Char('/'), -1);
  const bool hasQuery = url.contains(QLatin1Char('?')) || url.contains(QLatin1Char('#'));
  if (use == UrlUse::kOther || (last.isEmpty() && !hasQuery)) return {};
  if (use == UrlUse::kBaseOfAction) {
    const QString resolved = QUrl(url).resolved(QUrl(QStringLiteral("ch.html"))).toString();
    return {QStringLiteral("it does not end in \"/\": \"ch.html\" becomes \"%1\"").arg(resolved)};
  }
  if (hasQuery) {
    return {QStringLiteral("a base URL should have no '?' and no '#': viewers differ in what they make of it")};
  }
  return {QStringLiteral("it does not end in \"/\": Chrome and MuPDF join the texts, so \".../%1\" and "
                         "\"ch.html\" become \".../%1ch.html\"; Firefox drops \"%1\"")
              .arg(last)};
}

}  // namespace

UrlCheck CheckUrl(const QString& url, UrlUse use) {
  UrlCheck check{FindError(url), {}};
  if (!check.error.isEmpty()) return check;
  if (!IsAscii(url)) check.warnings += QStringLiteral("it is written as %1").arg(UrlAsWritten(url));
  if (!IsAscii(QUrl(url).host(QUrl::FullyDecoded))) {
    check.warnings += QStringLiteral("not every viewer understands a host outside ASCII; %1 is safer")
                          .arg(QString::fromLatin1(QUrl(url).toEncoded()));
  }
  check.warnings += OddParts(url) + OddBase(url, use);
  return check;
}
