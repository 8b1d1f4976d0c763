// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "utils/CActionUtils.h"
#include "utils/PageRangeExpansion.h"

namespace {

bool IsDigit(QChar c) {
  return (c >= u'0' && c <= u'9') || (c.unicode() > 0x7f && c.isNumber());
}

bool StartsNumber(QChar c) {
  return IsDigit(c) && c != u'0';
}

}  // namespace

bool CActionUtils::GetPageList(const QString& text, int pageCount, bool skipOdd, bool skipEven, QList<int>* pages) {
  if (text.isEmpty()) return false;
  if (pages) PageRangeExpansion(text, pageCount, skipOdd, skipEven).Run(*pages);
  return true;
}

void CActionUtils::CollectPageList(QList<int>* pages, QList<int>* runs) {
  if (!pages || !runs) return;
  const QList<int> sorted = *pages;
  for (int last = sorted.size() - 1; last >= 0;) {
    int first = last;
    while (first > 0 && qint64{sorted.at(first)} - sorted.at(first - 1) == 1) --first;
    runs->append(sorted.at(first));
    runs->append(last - first + 1);
    last = first - 1;
  }
}

bool CActionUtils::ValidatePageRange(QString text, bool allowDescending) {
  text.remove(u' ');
  if (text.isEmpty() || !StartsNumber(text.front())) return false;

  int itemStart = 0;
  bool itemHasDash = false;
  for (int i = 0; i + 1 < text.size(); ++i) {
    const QChar next = text.at(i + 1);
    if (IsDigit(text.at(i))) {
      if (IsDigit(next) || next == u',') continue;
      // The one asymmetry: a comma may end the text, a dash may not.
      if (next != u'-' || itemHasDash || i + 2 == text.size()) return false;
      continue;
    }
    // A comma or a dash: nothing else passed as the follower of a digit.
    if (!StartsNumber(next)) return false;
    if (text.at(i) == u',') {
      itemStart = i + 1;
      itemHasDash = false;
      continue;
    }
    itemHasDash = true;
    const int itemEnd = text.indexOf(u',', i);
    const int first = text.midRef(itemStart, i - itemStart).toInt();
    const int last = text.midRef(i + 1, itemEnd < 0 ? -1 : itemEnd - i - 1).toInt();
    if (first >= last && !allowDescending) return false;
  }
  return true;
}

bool CActionUtils::ValidateSplitPageRange(QString text) {
  const QStringList pieces = text.split(u';');
  return std::all_of(pieces.begin(), pieces.end(), [](const QString& piece) { return ValidatePageRange(piece, true); });
}
