// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CCursorPosCalculator.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// "L" and "R" for the edges left and right, "T" and "B" for top and bottom, "tl", "bl", "tr" and "br" for the corners,
// "M" for the move bar.
std::string zones(const CCursorPosCalculator& calculator) {
  std::string text;
  const auto add = [&text](bool flag, const char* name) {
    if (flag) text += name;
  };
  add(calculator.onLeftEdge, "L");
  add(calculator.onRightEdge, "R");
  add(calculator.onTopEdge, "T");
  add(calculator.onBottomEdge, "B");
  add(calculator.onTopLeftCorner, "tl");
  add(calculator.onBottomLeftCorner, "bl");
  add(calculator.onTopRightCorner, "tr");
  add(calculator.onBottomRightCorner, "br");
  add(calculator.onMoveBar, "M");
  EXPECT_EQ(calculator.onEdges, text.find_first_of("LRTBtb") != std::string::npos) << text;
  return text;
}

struct HitCase {
  QPoint point;
  const char* zones;
};

void expectZones(CCursorPosCalculator calculator, std::initializer_list<HitCase> cases) {
  for (const HitCase& hit : cases) {
    calculator.recalculate(hit.point, QRect(100, 100, 400, 300));
    EXPECT_EQ(zones(calculator), hit.zones) << hit.point.x() << ", " << hit.point.y();
  }
}

TEST(CCursorPosCalculator, TellsEdgesCornersAndMoveBarOfTheFrame) {
  CCursorPosCalculator calculator;
  calculator.borderWidth = 9;
  calculator.moveBarHeight = 30;
  // The frame's outer bounds are 100..500 and 100..400, one past Qt's inclusive right and bottom.
  expectZones(calculator, {
                              {{99, 250}, ""},
                              {{100, 250}, "L"},
                              {{109, 250}, "L"},
                              {{110, 250}, ""},
                              {{490, 250}, ""},
                              {{491, 250}, "R"},
                              {{500, 250}, "R"},
                              {{501, 250}, ""},
                              {{300, 99}, "M"},
                              {{300, 100}, "TM"},
                              {{300, 109}, "TM"},
                              {{300, 110}, "M"},
                              {{300, 130}, "M"},
                              {{300, 131}, ""},
                              {{300, 390}, ""},
                              {{300, 391}, "B"},
                              {{300, 400}, "B"},
                              {{300, 401}, ""},
                              // Three corners reach twice the strip, on and off the strips themselves.
                              {{118, 118}, "tlM"},
                              {{119, 118}, "M"},
                              {{109, 118}, "LtlM"},
                              {{118, 109}, "TtlM"},
                              {{118, 382}, "bl"},
                              {{118, 381}, ""},
                              {{482, 382}, "br"},
                              {{481, 382}, ""},
                              // The top right one does not.
                              {{482, 118}, "M"},
                              {{491, 109}, "RTtrM"},
                              {{490, 109}, "TM"},
                              {{491, 110}, "RM"},
                              {{500, 100}, "RTtrM"},
                          });
}

TEST(CCursorPosCalculator, MovesTheStripsButNotTheMoveBarInwardsByTheInset) {
  CCursorPosCalculator calculator;
  calculator.edgeInset = 8;
  calculator.moveBarHeight = 4;
  expectZones(calculator, {
                              {{107, 250}, ""},
                              {{108, 250}, "L"},
                              {{113, 250}, "L"},
                              {{114, 250}, ""},
                              {{492, 250}, "R"},
                              {{493, 250}, ""},
                              {{300, 104}, "M"},
                              {{300, 108}, "T"},
                              {{300, 392}, "B"},
                              {{300, 393}, ""},
                          });
}

TEST(CCursorPosCalculator, ResetClearsTheFlagsAndKeepsTheSizes) {
  CCursorPosCalculator calculator;
  EXPECT_EQ(calculator.borderWidth, 5);
  EXPECT_EQ(calculator.edgeInset, 0);
  EXPECT_EQ(calculator.moveBarHeight, 0);
  calculator.borderWidth = 3;
  calculator.edgeInset = 1;
  calculator.moveBarHeight = 20;
  calculator.recalculate(QPoint(2, 2), QRect(0, 0, 50, 50));
  EXPECT_EQ(zones(calculator), "LTtlM");
  EXPECT_TRUE(calculator.nearLeftEdge && calculator.nearTopEdge);
  calculator.reset();
  EXPECT_EQ(zones(calculator), "");
  EXPECT_FALSE(calculator.nearLeftEdge || calculator.nearTopEdge);
  EXPECT_EQ(calculator.borderWidth, 3);
  EXPECT_EQ(calculator.edgeInset, 1);
  EXPECT_EQ(calculator.moveBarHeight, 20);
}

}  // namespace
