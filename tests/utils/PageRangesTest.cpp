// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <QElapsedTimer>

#include "utils/CActionUtils.h"

namespace {

using Pages = QList<int>;

Pages Expand(const QString& text, int pageCount, bool skipOdd, bool skipEven, Pages pages = {}) {
  EXPECT_TRUE(CActionUtils::GetPageList(text, pageCount, skipOdd, skipEven, &pages));
  return pages;
}

TEST(PageRanges, AreExpanded) {
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
      {"4,5,x,1-3,8,-2", 20, false, true, {1, 3, 5}},
      {" +3 ,\t5\t,1.5", 20, false, true, {3, 5}},
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
