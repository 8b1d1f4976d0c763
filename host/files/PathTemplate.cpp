// SPDX-License-Identifier: Apache-2.0
#include "host/files/PathTemplate.h"

#include <algorithm>
#include <string_view>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"

PathTemplate::PathTemplate(const QString& text, Encoding encoding) : text_(text), encoding_(encoding) {
  Piece piece;
  for (int i = 0; i < text.size(); ++i) {
    const QChar character = text[i];
    const bool isBrace = character == QLatin1Char('{') || character == QLatin1Char('}');
    const bool isDoubled = isBrace && i + 1 < text.size() && text[i + 1] == character;
    if (!isBrace || isDoubled) {
      piece.text += character;
      if (isDoubled) ++i;
      continue;
    }
    const int end = text.indexOf(QLatin1Char('}'), i);
    if (character == QLatin1Char('}') || end < 0) {
      throw CommandError(kExitUsage, QStringLiteral("'%1' has a brace without its partner.").arg(text));
    }
    piece.place = PlaceOf(text.mid(i + 1, end - i - 1), text);
    pieces_.push_back(std::exchange(piece, {}));
    i = end;
  }
  pieces_.push_back(piece);
}

PathTemplate::Place PathTemplate::PlaceOf(const QString& name, const QString& text) {
  if (name == QLatin1String("path")) return Place::kPath;
  if (name == QLatin1String("folder")) return Place::kFolder;
  if (name == QLatin1String("name")) return Place::kName;
  if (name == QLatin1String("stem")) return Place::kStem;
  throw CommandError(
      kExitUsage,
      QStringLiteral("'{%1}' in '%2' is unknown; {folder}, {name}, {stem} and {path} are known.").arg(name, text));
}

QString PathTemplate::Fill(const std::string& path) const {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash);
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::size_t dot = name.rfind('.');
  QString filled;
  bool dropSlash = false;
  for (const Piece& piece : pieces_) {
    filled += dropSlash && piece.text.startsWith(QLatin1Char('/')) ? piece.text.mid(1) : piece.text;
    dropSlash = piece.place == Place::kFolder && folder.empty();
    switch (piece.place) {
      case Place::kPath:
        filled += Encoded(path);
        break;
      case Place::kFolder:
        filled += Encoded(folder);
        break;
      case Place::kName:
        filled += Encoded(name);
        break;
      case Place::kStem:
        filled += Encoded(dot == 0 ? name : name.substr(0, dot));
        break;
      case Place::kNone:
        break;
    }
  }
  return filled;
}

bool PathTemplate::UsesFolder() const {
  return std::any_of(pieces_.begin(), pieces_.end(),
                     [](const Piece& piece) { return piece.place == Place::kFolder || piece.place == Place::kPath; });
}

QString PathTemplate::Encoded(const std::string& part) const {
  if (encoding_ == Encoding::kPlain) return NativeName::ToText(part);
  return QString::fromLatin1(QByteArray::fromStdString(part).toPercentEncoding("/!$&'()*+,;=:@"));
}
