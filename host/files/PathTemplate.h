// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVector>
#include <string>

// A text with places for the parts of a file's path: {path} "a/b/c.pdf", {folder} "a/b", {name} "c.pdf", {stem} "c".
// "{{" and "}}" stand for braces.
class PathTemplate {
 public:
  // How the parts are written into the text.
  enum class Encoding {
    kPlain,
    kUrl,  // each segment percent-encoded (RFC 3986, 3.3)
  };

  // Throws CommandError(kExitUsage) for an unknown place or a brace that has no partner.
  PathTemplate(const QString& text, Encoding encoding);

  // `path` is relative, bytes as the file system has them. An empty {folder} takes the slash after it along.
  QString Fill(const std::string& path) const;
  const QString& Text() const { return text_; }
  // Whether the text depends on the folders above the file.
  bool UsesFolder() const;

 private:
  enum class Place { kNone, kPath, kFolder, kName, kStem };
  struct Piece {
    QString text;  // before the place
    Place place = Place::kNone;
  };

  static Place PlaceOf(const QString& name, const QString& text);
  QString Encoded(const std::string& part) const;

  QString text_;
  Encoding encoding_;
  QVector<Piece> pieces_;
};
