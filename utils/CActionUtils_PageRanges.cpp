// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <limits>
#include <QSet>
#include <utility>
#include <vector>

#include "utils/CActionUtils.h"

namespace {

using PageRange = std::pair<qint64, qint64>;  // first and last page

// Expands one page-range text, see CActionUtils::GetPageList().
struct PageRangeText {
  const QString& text;
  const int pageCount;
  const bool skipOdd;
  const bool skipEven;
  const QSet<int> present;  // the pages that the caller's list held before

  // A negative odd page is neither odd nor even here.
  bool IsExcluded(int page) const { return (skipOdd && page % 2 == 1) || (skipEven && (page & 1) == 0); }
  std::vector<PageRange> Ranges() const;
  void AppendTo(QList<int>& pages) const;
};

// The ranges that the text names, in its order, with excluded pages.
std::vector<PageRange> PageRangeText::Ranges() const {
  std::vector<PageRange> ranges;
  const auto add = [&](int first, int last) {
    if (first <= pageCount && first <= last) ranges.emplace_back(first, last);
  };
  // A text with a comma is no number; toInt() would read a long one to its end first.
  const auto number = [&](int from, int to) {
    const QStringRef digits = text.midRef(from, to - from);
    return digits.contains(u',') ? 0 : digits.toInt();
  };
  const int lastItem = text.lastIndexOf(u',') + 1;
  int comma = text.indexOf(u',');
  int dash = -1;  // the first one at or after `start`, beyond the end if there is none
  for (int start = 0; start <= text.size();) {
    if (dash < start) dash = text.indexOf(u'-', start);
    if (dash < 0) dash = text.size() + 1;
    // After an excluded item the whole rest of the text is read. As long as it has a comma it is page 0, which is
    // excluded too, so skip to the last item.
    if (start > comma && dash > text.size()) start = std::max(start, lastItem);
    const int end = start > comma ? text.size() : comma;
    if (dash < end) {
      add(number(start, dash), number(dash + 1, end));
    } else {
      const int page = number(start, end);
      if (page <= pageCount && IsExcluded(page) && !present.contains(page)) {
        ++start;
        continue;
      }
      add(page, page);
    }
    if (comma < 0) break;
    start = comma + 1;
    comma = text.indexOf(u',', start);
  }
  return ranges;
}

void PageRangeText::AppendTo(QList<int>& pages) const {
  std::vector<PageRange> ranges = Ranges();
  std::sort(ranges.begin(), ranges.end());
  qint64 next = std::numeric_limits<int>::min();
  qint64 count = 0;
  for (auto& [first, last] : ranges) {
    first = std::max(first, next);  // each page once
    next = std::max(next, last + 1);
    count += next - std::min(first, next);
  }
  // Throws before `pages` is changed when a list cannot hold the pages.
  if (skipOdd || skipEven) count /= 2;
  pages.reserve(static_cast<int>(std::min<qint64>(pages.size() + count, std::numeric_limits<int>::max())));
  for (const auto& [first, last] : ranges) {
    for (qint64 number = first; number <= last; ++number) {
      const int page = static_cast<int>(number);
      if (!IsExcluded(page) && !present.contains(page)) pages.append(page);
    }
  }
  std::sort(pages.begin(), pages.end());
}

bool IsDigit(QChar c) {
  return (c >= u'0' && c <= u'9') || (c.unicode() > 0x7f && c.isNumber());
}

bool StartsNumber(QChar c) {
  return IsDigit(c) && c != u'0';
}

}  // namespace

bool CActionUtils::GetPageList(const QString& text, int pageCount, bool skipOdd, bool skipEven, QList<int>* pages) {
  if (text.isEmpty()) return false;
  if (!pages) return true;
  PageRangeText{text, pageCount, skipOdd, skipEven, {pages->cbegin(), pages->cend()}}.AppendTo(*pages);
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
      // A comma may end the text, a dash may not.
      if (next != u'-' || itemHasDash || i + 2 == text.size()) return false;
      continue;
    }
    // A comma or a dash: nothing else may follow a digit.
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
