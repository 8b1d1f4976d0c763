// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/ShownText.h"

namespace {

constexpr int kLongestText = 500;

bool IsHalfPair(const QString& text, int at) {
  if (text[at].isHighSurrogate()) return at + 1 == text.size() || !text[at + 1].isLowSurrogate();
  return text[at].isLowSurrogate() && (at == 0 || !text[at - 1].isHighSurrogate());
}

}  // namespace

QString ShownText(const QString& text) {
  QString shown = text.left(kLongestText);
  for (int i = 0; i < shown.size(); ++i) {
    if (shown[i].category() == QChar::Other_Control) shown[i] = QChar(' ');
    if (IsHalfPair(shown, i)) shown[i] = QChar::ReplacementCharacter;
  }
  return text.size() > kLongestText ? shown + QChar(0x2026) : shown;
}
