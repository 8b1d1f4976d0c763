// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <optional>
#include <QElapsedTimer>
#include <random>

#include "utils/CActionUtils.h"

namespace {

using Pages = QList<int>;

Pages Expand(const QString& text, int pageCount, bool skipOdd, bool skipEven, Pages pages = {}) {
  EXPECT_TRUE(CActionUtils::GetPageList(text, pageCount, skipOdd, skipEven, &pages));
  return pages;
}

// The rule of the expansion, step by step and slow. Nothing when it would take a very long range.
std::optional<Pages> ExpandSlowly(const QString& text, int pageCount, bool skipOdd, bool skipEven, Pages pages) {
  const auto excluded = [&](int page) { return (page % 2 == 1 && skipOdd) || ((page & 1) == 0 && skipEven); };
  int start = 0;
  int comma = text.indexOf(',');
  for (;;) {
    QString item;
    if (start <= text.size()) item = comma < 0 || start > comma ? text.mid(start) : text.mid(start, comma - start);
    if (item.contains('-')) {
      const int first = item.left(item.indexOf('-')).toInt();
      const int last = item.mid(item.indexOf('-') + 1).toInt();
      if (first <= pageCount && first <= last) {
        if (qint64{last} - first > 2000) return {};
        for (int page = first; page <= last; ++page) {
          if (pages.lastIndexOf(page) < 0 && !excluded(page)) pages.append(page);
        }
      }
    } else {
      const int page = item.toInt();
      if (page <= pageCount && pages.lastIndexOf(page) < 0) {
        if (excluded(page)) {
          // From here on page 0 is read and excluded until the position wraps round to -1.
          if (start >= text.size()) break;
          ++start;
          continue;
        }
        pages.append(page);
      }
    }
    if (comma < 0) break;
    start = comma + 1;
    comma = text.indexOf(',', start);
  }
  std::sort(pages.begin(), pages.end());
  return pages;
}

TEST(PageRanges, ExpandAsTold) {
  struct Row {
    const char* text;
    int pageCount;
    bool skipOdd, skipEven;
    Pages pages;
  };
  const Row table[] = {
      {"1-3,5", 10, false, false, {1, 2, 3, 5}},
      {"5,3,3,1", 10, false, false, {1, 3, 5}},
      {"3,1-4", 10, false, false, {1, 2, 3, 4}},
      {"8-12", 10, false, false, {8, 9, 10, 11, 12}},
      {"10-12", 10, false, false, {10, 11, 12}},
      {"11,12", 10, false, false, {}},
      {"11-12", 10, false, false, {}},
      {"3-1", 10, false, false, {}},
      {"5-", 10, false, false, {}},
      {"-3", 10, false, false, {0, 1, 2, 3}},
      {"1-3-5", 10, false, false, {}},
      {"abc", 10, false, false, {0}},
      {"1,,3", 10, false, false, {0, 1, 3}},
      {"1,2,", 10, false, false, {0, 1, 2}},
      {" 2 , 4 ", 10, false, false, {2, 4}},
      {"99999999999", 10, false, false, {0}},
      {"2147483646-2147483647", INT_MAX, false, false, {2147483646, 2147483647}},
      {"1", -1, false, false, {}},
      {"1-6", 10, true, false, {2, 4, 6}},
      {"1-6", 10, false, true, {1, 3, 5}},
      {"1-6,4,7", 10, true, true, {}},
      {"2,5", 10, false, true, {5}},
      {"12,3", 20, false, true, {3}},
      {"13,4", 20, true, false, {0, 4}},
      {"15", 20, true, false, {0}},
      {"4", 20, false, true, {}},
      {"4,5,6", 20, false, true, {}},      // the rest of the text has only even remainders: nothing after it is read
      {"4,5,7", 20, false, true, {5, 7}},  // the last remainder is 7: the items in between are read after it
      {"4,1-3", 20, false, true, {1, 3}},  // the rest is a range itself
      {"4,7,2-3", 20, false, true, {1, 3, 7}},  // the rest is a range from '7,2', read as 0
  };
  for (const Row& row : table) {
    EXPECT_EQ(Expand(row.text, row.pageCount, row.skipOdd, row.skipEven), row.pages) << row.text;
  }
}

TEST(PageRanges, PagesThatWereThereStay) {
  EXPECT_EQ(Expand("2-4", 10, false, false, {9, 3, 3, -1}), Pages({-1, 2, 3, 3, 4, 9}));
  EXPECT_EQ(Expand("4,5,6", 10, false, true, {4}), Pages({4, 5}));  // an excluded page that is there ends its item
  EXPECT_EQ(Expand("4,5,6", 10, false, true, {0}), Pages({0, 5}));  // and so does the empty remainder
  Pages untouched{3, 1};
  EXPECT_FALSE(CActionUtils::GetPageList("", 10, false, false, &untouched));
  EXPECT_EQ(untouched, Pages({3, 1}));
  EXPECT_TRUE(CActionUtils::GetPageList("1", 10, false, false, nullptr));
}

TEST(PageRanges, EqualTheRuleOnRandomTexts) {
  std::mt19937 random(20240501);
  const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  // Digits and separators mostly; then what QString::toInt() skips, reads as a sign, or stumbles over.
  const QString alphabets[] = {"0123456789,,,,-", "2468,,", "02,-", "0000000002 ,",
                               QString::fromUtf8("0123456789,,-- +\t\xe2\x88\x92\xc2\xa0\xe3\x80\x80\xd9\xa3x.\n")};
  int compared = 0;
  int withPages = 0;
  for (int round = 0; round < 20000; ++round) {
    const QString& alphabet = alphabets[pick(5)];
    QString text;
    for (int length = 1 + pick(pick(8) == 0 ? 40 : 12); length > 0; --length)
      text += alphabet.at(pick(alphabet.size()));
    Pages present;
    for (int count = pick(3) == 0 ? pick(4) : 0; count > 0; --count) present.append(pick(12) - 2);
    const int pageCount = pick(4) == 0 ? pick(3000) - 5 : pick(14) - 2;
    const bool skipOdd = pick(3) == 0;
    const bool skipEven = pick(2) == 0;

    const auto expected = ExpandSlowly(text, pageCount, skipOdd, skipEven, present);
    if (!expected) continue;
    ++compared;
    withPages += expected->size() > present.size();
    ASSERT_EQ(Expand(text, pageCount, skipOdd, skipEven, present), *expected)
        << '"' << qPrintable(text) << "\" of " << pageCount << " odd " << skipOdd << " even " << skipEven;
  }
  EXPECT_GT(compared, 16000);
  EXPECT_GT(withPages, 6000);
}

// Release builds take less than 0.2 s for either; the limit here is for slow machines and sanitizers.
TEST(PageRanges, ManyPagesAndItemsAreQuickAndTooManyTakeNoMemory) {
  QStringList items;
  for (int page = 1; page <= 100000; ++page) items << QString::number(page);
  QElapsedTimer timer;
  timer.start();
  EXPECT_EQ(Expand("1-1000000", 1000000, false, false).size(), 1000000);
  for (const char* end : {"", ",5-9", ",7"})
    EXPECT_LE(Expand(items.join(',') + end, 100000, false, true).size(), 50000);
  EXPECT_LT(timer.elapsed(), 20000);
  Pages pages{3, 1};
  EXPECT_THROW(CActionUtils::GetPageList("1-2147483647", 10, false, false, &pages), std::bad_alloc);
  EXPECT_EQ(pages, Pages({3, 1}));
}

TEST(PageRanges, Validate) {
  struct Row {
    QString text;
    bool ascending, any;
  };
  const Row table[] = {
      {"", false, false},
      {" ", false, false},
      {"0", false, false},
      {"05", false, false},
      {"7", true, true},
      {"10", true, true},
      {"x", false, false},
      {"1x", false, false},
      {"1-3,5", true, true},
      {"1-20", true, true},
      {"4-4", false, true},
      {"5-3", false, true},
      {"1,02", false, false},
      {"3-07", false, false},
      {"1,2,", true, true},
      {"1,2-", false, false},
      {"1-", false, false},
      {"1,", true, true},
      {"1-2,", true, true},
      {"1-2-", false, false},
      {",1", false, false},
      {"-1", false, false},
      {"1,,2", false, false},
      {"1,-2", false, false},
      {"1-,2", false, false},
      {"1--2", false, false},
      {"1-3-5", false, false},
      {"1,2-3-4", false, false},
      {"1-2,3-4", true, true},
      {"1-2,4-3", false, true},
      {"1;2", false, false},
      {"1 - 3 , 5", true, true},
      {"1 0-1 1", true, true},
      {"1\t-3", false, false},
      {"1-99999999999", false, true},
      {"\u0663", true, true},
      {"\u0663-\u0665", false, true},  // digits that toInt() does not read
      {"1-\u00bd", false, true},
      {"1\U0001D7CE", false, false},
  };
  for (const Row& row : table) {
    EXPECT_EQ(CActionUtils::ValidatePageRange(row.text, false), row.ascending) << qPrintable(row.text);
    EXPECT_EQ(CActionUtils::ValidatePageRange(row.text, true), row.any) << qPrintable(row.text);
  }
  const QList<QPair<QString, bool>> split = {{"1-3;5-2;7", true}, {"1-3;;7", false}, {"1-3;", false}, {";", false},
                                             {"", false},         {"4", true},       {"4;0", false}};
  for (const auto& [text, expected] : split) {
    EXPECT_EQ(CActionUtils::ValidateSplitPageRange(text), expected) << qPrintable(text);
  }
}

TEST(PageRanges, CollectRunsFromTheEnd) {
  const QList<QPair<Pages, Pages>> table = {{{}, {}},
                                            {{4}, {4, 1}},
                                            {{1, 2, 3, 5}, {5, 1, 1, 3}},
                                            {{2, 4, 6}, {6, 1, 4, 1, 2, 1}},
                                            {{7, 8}, {7, 2}},
                                            {{3, 3, 4}, {3, 2, 3, 1}},
                                            {{-2, -1, 0, 1}, {-2, 4}},
                                            {{INT_MIN, INT_MAX}, {INT_MAX, 1, INT_MIN, 1}}};
  for (auto [pages, expected] : table) {
    Pages runs{99};
    CActionUtils::CollectPageList(&pages, &runs);
    EXPECT_EQ(runs, Pages{99} + expected);
  }
  Pages both{1, 2};
  CActionUtils::CollectPageList(&both, &both);
  EXPECT_EQ(both, Pages({1, 2, 1, 2}));
  CActionUtils::CollectPageList(nullptr, &both);
  CActionUtils::CollectPageList(&both, nullptr);
}

}  // namespace
