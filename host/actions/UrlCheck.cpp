// SPDX-License-Identifier: Apache-2.0
#include "host/actions/UrlCheck.h"

#include <algorithm>
#include <QRegularExpression>
#include <QUrl>

#include "utils/AsciiCharacters.h"

namespace {

bool IsDrivePath(const QString& url) {
  static const QRegularExpression drive(QStringLiteral("^[A-Za-z]:([\\\\/]|$)"));
  return drive.match(url).hasMatch();
}

QString FindError(const QString& url) {
  static const QRegularExpression forbidden(QStringLiteral("[\\s\\x00-\\x1f\\x7f\"<>\\\\^`{|}]"));
  static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*:"));
  static const QRegularExpression percent(QStringLiteral("%(?![0-9A-Fa-f]{2})"));
  if (IsDrivePath(url)) return QStringLiteral("it is a path on a drive, not a URL");
  if (!scheme.match(url).hasMatch()) return QStringLiteral("it has no scheme, such as https://");
  const QRegularExpressionMatch bad = forbidden.match(url);
  if (bad.hasMatch()) {
    return bad.captured().trimmed().isEmpty()
               ? QStringLiteral("it has a space or a control character; write a space as %20")
               : QStringLiteral("it has the character %1, which no URL may hold").arg(bad.captured());
  }
  if (percent.match(url).hasMatch()) return QStringLiteral("it has a '%' without two hexadecimal digits after it");
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

// What is usable, but not what most people mean.
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
