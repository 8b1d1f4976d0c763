// SPDX-License-Identifier: Apache-2.0
#include "utils/PageRangeExpansion.h"

#include <algorithm>
#include <limits>

namespace {

constexpr QChar kComma = u',';
constexpr QChar kDash = u'-';

// The numbers that QString::toInt() reads from an item's remainders, in linear time for all of them together: a text
// is handed over without the white space around it and without leading zeros, and if it is still too long for an int,
// not at all.
class RemainderNumbers {
 public:
  explicit RemainderNumbers(const QStringRef& item) : mItem(item), mEnd(item.size()) {
    while (mEnd > 0 && mItem.at(mEnd - 1).isSpace()) --mEnd;
  }

  // `from` must not be below that of an earlier call.
  int At(int from) {
    mBody = std::max(mBody, from);
    while (mBody < mEnd && mItem.at(mBody).isSpace()) ++mBody;
    if (mBody >= mEnd) return 0;
    const int sign = IsSign(mItem.at(mBody)) ? 1 : 0;
    mDigits = std::max(mDigits, mBody + sign);
    while (mDigits < mEnd && mItem.at(mDigits) == u'0') ++mDigits;
    if (mEnd - mDigits > kMostDigits) return 0;
    const int kept = std::max(mBody + sign, mDigits - 1);  // with one zero, which may be the only digit
    return (mItem.mid(mBody, sign) + mItem.mid(kept, mEnd - kept)).toInt();
  }

 private:
  static constexpr int kMostDigits = 10;
  static bool IsSign(QChar c) { return c == u'+' || c == u'-' || c == u'\u2212'; }

  const QStringRef mItem;
  int mEnd;         // after the last character that is not white space
  int mBody = 0;    // the first such character of the remainder
  int mDigits = 0;  // after the sign and the leading zeros
};

}  // namespace

PageRangeExpansion::PageRangeExpansion(const QString& text, int pageCount, bool skipOdd, bool skipEven)
    : mText(text),
      mPageCount(pageCount),
      mSkipOdd(skipOdd),
      mSkipEven(skipEven),
      mLastItem(text.lastIndexOf(kComma) + 1) {}

void PageRangeExpansion::Run(QList<int>& pages) {
  mPresent.assign(pages.cbegin(), pages.cend());
  std::sort(mPresent.begin(), mPresent.end());

  bool goesOn = true;
  for (int start = 0; goesOn;) {
    const int comma = mText.indexOf(kComma, start);
    const QStringRef item = mText.midRef(start, comma < 0 ? -1 : comma - start);
    const int dash = item.indexOf(kDash);
    if (dash >= 0) {
      AddRange(item.left(dash).toInt(), item.mid(dash + 1).toInt());
      goesOn = comma >= 0;
    } else {
      const bool taken = TakeFirstRemainder(item);
      goesOn = comma >= 0 && (taken || ReadOnPastComma(comma));
    }
    start = comma + 1;
  }
  AppendNamedPages(pages);
}

bool PageRangeExpansion::IsExcluded(int page) const {
  return (mSkipOdd && page % 2 == 1) || (mSkipEven && (page & 1) == 0);  // a negative odd page is neither
}

void PageRangeExpansion::AddRange(int first, int last) {
  if (first <= mPageCount && first <= last) mNamed.emplace_back(first, last);
}

bool PageRangeExpansion::TakePage(int page) {
  if (page > mPageCount) return true;
  if (IsExcluded(page)) return std::binary_search(mPresent.begin(), mPresent.end(), page);
  mNamed.emplace_back(page, page);
  return true;
}

bool PageRangeExpansion::TakeFirstRemainder(const QStringRef& item) {
  if (TakePage(item.toInt())) return true;
  RemainderNumbers numbers(item);
  for (int from = 1; from <= item.size(); ++from) {
    if (TakePage(numbers.At(from))) return true;
  }
  return false;
}

bool PageRangeExpansion::ReadOnPastComma(int comma) {
  const int start = comma + 1;
  if (mNextDash < start) {
    const int dash = mText.indexOf(kDash, start);
    mNextDash = dash < 0 ? mText.size() : dash;
  }
  if (mNextDash < mText.size()) {
    const int nextComma = mText.indexOf(kComma, start);
    const bool isNumber = nextComma < 0 || nextComma > mNextDash;
    AddRange(isNumber ? mText.midRef(start, mNextDash - start).toInt() : 0, ReadRangeEnd(mNextDash));
    return true;
  }
  // Every rest that still holds a comma reads as page 0, which is known to be excluded here.
  if (!mLastItemTaken) mLastItemTaken = TakeFirstRemainder(mText.midRef(mLastItem));
  // When nothing is taken, page 0 is read, and excluded, at every further position.
  return *mLastItemTaken;
}

int PageRangeExpansion::ReadRangeEnd(int dash) {
  if (dash < mLastItem) return 0;  // a comma follows: not a number
  if (!mLastRangeEnd) mLastRangeEnd = mText.midRef(dash + 1).toInt();
  return *mLastRangeEnd;
}

void PageRangeExpansion::AppendNamedPages(QList<int>& pages) const {
  auto ranges = mNamed;
  std::sort(ranges.begin(), ranges.end());
  std::sort(pages.begin(), pages.end());
  const int presentCount = pages.size();

  // 64 bits, so that the page after the greatest one can be named.
  qint64 next = std::numeric_limits<int>::min();
  auto present = mPresent.begin();
  for (const auto& [first, last] : ranges) {
    for (next = std::max<qint64>(next, first); next <= last; ++next) {
      const int page = static_cast<int>(next);
      present = std::find_if(present, mPresent.end(), [page](int other) { return other >= page; });
      const bool isPresent = present != mPresent.end() && *present == page;
      if (!isPresent && !IsExcluded(page)) pages.append(page);
    }
  }
  std::inplace_merge(pages.begin(), pages.begin() + presentCount, pages.end());
}
