// SPDX-License-Identifier: Apache-2.0
#include "host/base/ShellLine.h"

#include <QRegularExpression>

namespace {

// A byte that is not UTF-8, as NativeName has it.
QString PrintByte(ushort unit) {
  return QStringLiteral("\"$(printf '\\%1')\"").arg(unit & 0xFF, 3, 8, QLatin1Char('0'));
}

QString Quoted(const QString& word) {
  static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
  if (plain.match(word).hasMatch()) return word;
  QString quoted(QLatin1Char('\''));
  for (int i = 0; i < word.size(); ++i) {
    const ushort unit = word[i].unicode();
    const bool isByte = unit >= 0xDC80 && unit <= 0xDCFF && (i == 0 || !word[i - 1].isHighSurrogate());
    if (isByte) {
      quoted += QLatin1Char('\'') + PrintByte(unit) + QLatin1Char('\'');
    } else if (word[i] == QLatin1Char('\'')) {
      quoted += QStringLiteral("'\\''");
    } else {
      quoted += word[i];
    }
  }
  return quoted + QLatin1Char('\'');
}

}  // namespace

QString ShellLine(const QStringList& words) {
  QStringList quoted;
  for (const QString& word : words) quoted += Quoted(word);
  return quoted.join(QLatin1Char(' '));
}
