// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <new>

#include "utils/CActionUtils.h"

namespace {

using Pages = QList<int>;

Pages Expand(const QString& text, int pageCount, bool skipOdd, bool skipEven, Pages pages = {}) {
  EXPECT_TRUE(CActionUtils::GetPageList(text, pageCount, skipOdd, skipEven, &pages));
  return pages;
}

using Expansions = QList<QPair<QString, Pages>>;

TEST(PageRanges, AreExpanded) {
  const Expansions all = {{"1-3,5", {1, 2, 3, 5}},
                          {"5,3,3,1", {1, 3, 5}},
                          {"3,1-4", {1, 2, 3, 4}},
                          {"8-12", {8, 9, 10, 11, 12}},
                          {"10-12", {10, 11, 12}},
                          {"11,12", {}},
                          {"11-12", {}},
                          {"3-1", {}},
                          {"5-", {}},
                          {"-3", {0, 1, 2, 3}},
                          {"1-3-5", {}},
                          {"abc", {0}},
                          {"1,,3", {0, 1, 3}},
                          {"1,2,", {0, 1, 2}},
                          {" 2 , 4 ", {2, 4}},
                          {"99999999999", {0}}};
  for (const auto& [text, pages] : all) EXPECT_EQ(Expand(text, 10, false, false), pages) << qPrintable(text);
  const Expansions withoutOdd = {{"1-6", {2, 4, 6}}, {"13,4", {0, 4}}, {"15", {0}}};
  for (const auto& [text, pages] : withoutOdd) EXPECT_EQ(Expand(text, 20, true, false), pages) << qPrintable(text);
  const Expansions withoutEven = {
      {"1-6", {1, 3, 5}},
      {"2,5", {5}},
      {"12,3", {3}},
      {"4", {}},
      {"4,5,6", {}},           // the rest of the text has only even remainders: nothing after it is read
      {"4,5,7", {5, 7}},       // the last remainder is 7: the items in between are read after it
      {"4,1-3", {1, 3}},       // the rest is a range itself
      {"4,7,2-3", {1, 3, 7}},  // the rest is a range from '7,2', read as 0
      {"4,5,x,1-3,8,-2", {1, 3, 5}},
      {" +3 ,\t5\t,1.5", {3, 5}}};
  for (const auto& [text, pages] : withoutEven) EXPECT_EQ(Expand(text, 20, false, true), pages) << qPrintable(text);
  EXPECT_EQ(Expand("1-6,4,7", 10, true, true), Pages());
  EXPECT_EQ(Expand("1", -1, false, false), Pages());
  EXPECT_EQ(Expand("2147483646-2147483647", INT_MAX, false, false), Pages({2147483646, 2147483647}));
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

// Processor time, which does not depend on the machine's load.
clock_t TimeForItems(int count) {
  QStringList items;
  for (int page = 1; page <= count; ++page) items << QString::number(page);
  const clock_t start = clock();
  for (const char* end : {"", ",5-9", ",7"})
    EXPECT_LE(Expand(items.join(',') + end, count, false, true).size(), count / 2);
  return clock() - start;
}

TEST(PageRanges, TimeGrowsWithTheItemsAndTooManyPagesTakeNoMemory) {
  EXPECT_LT(TimeForItems(160000), 60 * TimeForItems(10000));  // were it quadratic: 256 times
  EXPECT_EQ(Expand("1-1000000", 1000000, false, false).size(), 1000000);
  Pages pages{3, 1};
  EXPECT_THROW(CActionUtils::GetPageList("1-2147483647", 10, false, false, &pages), std::bad_alloc);
  EXPECT_EQ(pages, Pages({3, 1}));
}

TEST(PageRanges, Validate) {
  const QStringList invalid = {"",     " ",     "0",       "05",  "x",     "1x",         "1,02", "3-07",
                               "1,2-", "1-",    "1-2-",    ",1",  "-1",    "1,,2",       "1,-2", "1-,2",
                               "1--2", "1-3-5", "1,2-3-4", "1;2", "1\t-3", "1\U0001D7CE"};
  // The last three hold what toInt() reads as 0.
  const QStringList descending = {"4-4", "5-3", "1-2,4-3", "1-99999999999", "\u0663-\u0665", "1-\u00bd"};
  const QStringList ascending = {"7",    "10",      "1-3,5",     "1-20",    "1,2,",  "1,",
                                 "1-2,", "1-2,3-4", "1 - 3 , 5", "1 0-1 1", "\u0663"};
  for (const QString& text : invalid + descending + ascending) {
    EXPECT_EQ(CActionUtils::ValidatePageRange(text, false), ascending.contains(text)) << qPrintable(text);
    EXPECT_EQ(CActionUtils::ValidatePageRange(text, true), !invalid.contains(text)) << qPrintable(text);
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
