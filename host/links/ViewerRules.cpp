// SPDX-License-Identifier: Apache-2.0
#include "host/links/ViewerRules.h"

#include <algorithm>
#include <cctype>
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
  return QByteArray(text.constData());
}

// In UTF-8 what already is that, otherwise as Latin-1.
QByteArray Utf8OrLatin1(const QByteArray& bytes) {
  QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
  QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
  const bool isUtf8 = state.invalidChars == 0 && state.remainingChars == 0;
  return isUtf8 ? bytes : QString::fromLatin1(bytes.constData(), bytes.size()).toUtf8();
}

// A text string with or without a byte order mark (ISO 32000-2, 7.9.2.2).
QByteArray DecodedTextString(const QByteArray& bytes) {
  if (bytes.startsWith("\xEF\xBB\xBF")) return bytes.mid(3);
  if (!bytes.startsWith("\xFE\xFF") && !bytes.startsWith("\xFF\xFE")) return Utf8OrLatin1(bytes);
  return QTextCodec::codecForName("UTF-16")->toUnicode(bytes).toUtf8();
}

}  // namespace

ViewerRules::Target ViewerRules::PdfJs(const QByteArray& uri, const std::optional<QByteArray>& base) {
  if (uri.isEmpty()) return std::nullopt;
  const std::optional<WebUrl> parsedBase = base ? WebUrl::Parse(Utf8OrLatin1(*base), nullptr) : std::nullopt;
  const bool isHost = uri.startsWith("www.") && uri.count('.') >= 2;
  const QByteArray text = (isHost ? "http://" : "") + Utf8OrLatin1(uri);
  const std::optional<WebUrl> url = WebUrl::Parse(text, parsedBase ? &*parsedBase : nullptr);
  return url ? Target(url->Href()) : std::nullopt;
}

// A colon anywhere but at the start makes the link absolute; the others are joined to the base as texts.
ViewerRules::Target ViewerRules::Pdfium(const QByteArray& uri, const std::optional<QByteArray>& base) {
  return uri.indexOf(':') > 0 ? uri : base.value_or(QByteArray()) + uri;
}

// A scheme has three letters or more, so that "C:\x" is none. Without a base, a link is the name of a file.
ViewerRules::Target ViewerRules::MuPdf(const QByteArray& uri, const std::optional<QByteArray>& base) {
  constexpr int kShortestScheme = 3;
  const QByteArray text = UntilNul(DecodedTextString(uri));
  return HasScheme(text, kShortestScheme) ? text : (base ? DecodedTextString(*base) : "file://") + text;
}

// A colon before any slash makes the link absolute. Base and link are joined by exactly one slash, unless the base is
// empty or ends in "?".
ViewerRules::Target ViewerRules::Poppler(const QByteArray& uri, const std::optional<QByteArray>& base) {
  QByteArray text = UntilNul(uri);
  const int colon = text.indexOf(':');
  const int slash = text.indexOf('/');
  if (colon >= 0 && (slash < 0 || colon < slash)) return text;
  if (text.startsWith("www.")) return "http://" + text;
  if (!base) return text;
  if (text.startsWith('/')) text.remove(0, 1);
  const bool joined = base->isEmpty() || base->endsWith('/') || base->endsWith('?');
  return UntilNul(*base + (joined ? "" : "/") + text);
}

ViewerRules::Targets ViewerRules::All(const QByteArray& uri, const std::optional<QByteArray>& base) {
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
