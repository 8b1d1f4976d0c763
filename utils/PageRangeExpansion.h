// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <utility>
#include <vector>

/// One expansion of a page-range text, see CActionUtils::GetPageList(), in time linear in the text and the pages named.
///
/// A single page that is excluded as odd or even does not end its item: the item is read again from its next character
/// on, as far as the empty remainder (page 0), and then, past the comma, the whole rest of the text is read in the same
/// way. Excluded pages are never appended, so which remainders end an item does not depend on what was found before;
/// everything that would be read twice is therefore read once and remembered.
class PageRangeExpansion {
 public:
  /// `text` must outlive the object.
  PageRangeExpansion(const QString& text, int pageCount, bool skipOdd, bool skipEven);

  /// Adds the named pages that are not in `pages` yet, and sorts it.
  void Run(QList<int>& pages);

 private:
  bool IsExcluded(int page) const;
  void AddRange(int first, int last);
  // False when the page is excluded, so that the item goes on.
  bool TakePage(int page);
  // Takes the first of an item's remainders, the item itself and the empty one included, that is not excluded.
  bool TakeFirstRemainder(const QStringRef& item);
  // What follows an item of which every remainder was excluded. False when that ends the expansion.
  bool ReadOnPastComma(int comma);
  int ReadRangeEnd(int dash);
  void AppendNamedPages(QList<int>& pages) const;

  const QString& mText;
  const int mPageCount;
  const bool mSkipOdd;
  const bool mSkipEven;
  const int mLastItem;                      // where the text's last item begins
  std::vector<int> mPresent;                // the pages that were there before, sorted
  std::vector<std::pair<int, int>> mNamed;  // first and last pages of the ranges named, excluded pages included
  int mNextDash = -1;                       // the first dash at or after the last position asked for; the size if none
  std::optional<bool> mLastItemTaken;       // whether reading on at the last item found a page
  std::optional<int> mLastRangeEnd;         // the number after the last item's first dash
};
