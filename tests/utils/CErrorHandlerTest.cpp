// SPDX-License-Identifier: Apache-2.0
#include "utils/CErrorHandler.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(CErrorHandler, KeepsMessagesInOrderAndCopiesThemToTheSecondaryList) {
  CErrorHandler errors;
  EXPECT_EQ(errors.GetCount(), 0);
  EXPECT_EQ(errors.GetLast(), "Unknown error");
  EXPECT_EQ(errors.GetAt(0), "Unknown error");
  errors.StoreError("A");
  QList<QString> copies;
  errors.mSecondaryErrors = &copies;
  errors.StoreError("B%%");
  EXPECT_EQ(errors.GetAt(0), "A");
  EXPECT_EQ(errors.GetAt(1), "B%");
  EXPECT_EQ(errors.GetLast(), "B%");
  for (long outside : {2L, -1L, LONG_MIN, LONG_MAX, 1L << 32}) EXPECT_EQ(errors.GetAt(outside), "Unknown error");
  errors.ClearAll();
  EXPECT_EQ(errors.GetCount(), 0);
  EXPECT_EQ(copies, QList<QString>{"B%"});
}

TEST(CErrorHandler, StoresFinishedMessagesAndReadsNoArguments) {
  CErrorHandler errors;
  const QList<QPair<QString, QString>> table = {{"", ""},
                                                {"plain \u00e9\U0001F600", "plain \u00e9\U0001F600"},
                                                {"100%% sure", "100% sure"},
                                                {"file %s, line %d%n", "file %s, line %d%n"}};
  for (const auto& [format, message] : table) {
    errors.StoreError(format);
    EXPECT_EQ(errors.GetLast(), message);
  }
}

}  // namespace
