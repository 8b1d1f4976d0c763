// SPDX-License-Identifier: Apache-2.0
#include "host/links/ViewerRules.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <QTextCodec>

#include "host/links/WebUrl.h"

namespace {

bool IsSchemeCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '-' || c == '.';
}

// Whether the text begins with a letter, at least so many characters of a scheme in all, and a colon.
bool HasScheme(const QByteArray& text, int least) {
  const int colon = text.indexOf(':');
  return colon >= least && std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
         std::all_of(text.begin(), text.begin() + colon, IsSchemeCharacter);
}

QByteArray UntilNul(const QByteArray& text) {
  const int end = text.indexOf('\0');
  return end < 0 ? text : text.left(end);
}

bool IsUtf8(const QByteArray& bytes) {
  const bool isAscii = std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
  if (isAscii) return true;
  QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
  QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
  return state.invalidChars == 0 && state.remainingChars == 0;
}

// In UTF-8 what already is that, otherwise as Latin-1.
QByteArray Utf8OrLatin1(const QByteArray& bytes) {
  return IsUtf8(bytes) ? bytes : QString::fromLatin1(bytes.constData(), bytes.size()).toUtf8();
}

// PDFDocEncoding where it differs from Latin-1 (ISO 32000-2, annex D.2): the codes from 0x18 and from 0x7F. MuPDF
// writes two U+FFFD for a code that has no character.
constexpr char16_t kNone = 0;
constexpr char16_t kFrom18[] = {0x02D8, 0x02C7, 0x02C6, 0x02D9, 0x02DD, 0x02DB, 0x02DA, 0x02DC};
constexpr char16_t kFrom7F[] = {kNone,  0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x0192, 0x2044,
                                0x2039, 0x203A, 0x2212, 0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019,
                                0x201A, 0x2122, 0xFB01, 0xFB02, 0x0141, 0x0152, 0x0160, 0x0178, 0x017D,
                                0x0131, 0x0142, 0x0153, 0x0161, 0x017E, kNone,  0x20AC};
constexpr unsigned char kSoftHyphen = 0xAD;

char16_t CharacterOf(unsigned char code) {
  if (code >= 0x18 && code < 0x18 + std::size(kFrom18)) return kFrom18[code - 0x18];
  if (code >= 0x7F && code < 0x7F + std::size(kFrom7F)) return kFrom7F[code - 0x7F];
  return code == kSoftHyphen ? kNone : code;
}

QByteArray FromPdfDocEncoding(const QByteArray& bytes) {
  QString text;
  for (const char byte : bytes) {
    const char16_t character = CharacterOf(static_cast<unsigned char>(byte));
    text += character == kNone && byte != '\0' ? QStringLiteral("\uFFFD\uFFFD") : QString(QChar(character));
  }
  return text.toUtf8();
}

// A text string with or without a byte order mark (ISO 32000-2, 7.9.2.2). What is UTF-8 needs no mark.
QByteArray DecodedTextString(const QByteArray& bytes) {
  if (bytes.startsWith("\xEF\xBB\xBF")) return bytes.mid(3);
  if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE")) {
    return QTextCodec::codecForName("UTF-16")->toUnicode(bytes).toUtf8();
  }
  return IsUtf8(bytes) ? bytes : FromPdfDocEncoding(bytes);
}

}  // namespace

ViewerRules::Base::Base(const QByteArray& url) : bytes(url), parsed(WebUrl::Parse(Utf8OrLatin1(url), nullptr)) {}

ViewerRules::Target ViewerRules::PdfJs(const QByteArray& uri, const Base& base) {
  if (uri.isEmpty()) return std::nullopt;
  const bool isHost = uri.startsWith("www.") && uri.count('.') >= 2;
  const QByteArray text = (isHost ? "http://" : "") + Utf8OrLatin1(uri);
  const std::optional<WebUrl> url = WebUrl::Parse(text, base.parsed ? &*base.parsed : nullptr);
  return url ? Target(url->Href()) : std::nullopt;
}

// A colon anywhere but at the start makes the link absolute; the others are joined to the base as texts.
ViewerRules::Target ViewerRules::Pdfium(const QByteArray& uri, const Base& base) {
  return uri.indexOf(':') > 0 ? uri : base.bytes.value_or(QByteArray()) + uri;
}

// A scheme has three letters or more, so that "C:\x" is none. Without a base, a link is the name of a file.
ViewerRules::Target ViewerRules::MuPdf(const QByteArray& uri, const Base& base) {
  constexpr int kShortestScheme = 3;
  const QByteArray text = UntilNul(DecodedTextString(uri));
  return HasScheme(text, kShortestScheme) ? text : (base.bytes ? DecodedTextString(*base.bytes) : "file://") + text;
}

// A colon before any slash makes the link absolute. Base and link are joined by exactly one slash, unless the base is
// empty or ends in "?".
ViewerRules::Target ViewerRules::Poppler(const QByteArray& uri, const Base& base) {
  QByteArray text = UntilNul(uri);
  const int colon = text.indexOf(':');
  const int slash = text.indexOf('/');
  if (colon >= 0 && (slash < 0 || colon < slash)) return text;
  if (text.startsWith("www.")) return "http://" + text;
  if (!base.bytes) return text;
  if (text.startsWith('/')) text.remove(0, 1);
  const bool joined = base.bytes->isEmpty() || base.bytes->endsWith('/') || base.bytes->endsWith('?');
  return UntilNul(*base.bytes + (joined ? "" : "/") + text);
}

ViewerRules::Targets ViewerRules::All(const QByteArray& uri, const Base& base) {
  return {PdfJs(uri, base), Pdfium(uri, base), MuPdf(uri, base), Poppler(uri, base)};
}

bool ViewerRules::Agree(const Targets& targets) {
  const auto place = [](const QByteArray& target) {
    const std::optional<WebUrl> url = WebUrl::Parse(target, nullptr);
    return url ? url->Href() : target;
  };
  const Target& first = targets.front();
  return first && std::all_of(targets.begin(), targets.end(), [&](const Target& target) {
           return target && (*target == *first || place(*target) == place(*first));
         });
}
