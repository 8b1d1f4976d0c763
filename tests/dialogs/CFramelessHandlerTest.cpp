// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CFramelessHandler.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QWidget>
#include <QWindowStateChangeEvent>
#include <string>

namespace {

constexpr QRect kFrame(100, 100, 400, 300);

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
    calculator.recalculate(hit.point, kFrame);
    EXPECT_EQ(zones(calculator), hit.zones) << hit.point.x() << ", " << hit.point.y();
  }
}

TEST(CCursorPosCalculator, FindsEdgesCornersAndMoveBarOfTheFrame) {
  CCursorPosCalculator calculator;
  calculator.borderWidth = 9;
  calculator.moveBarHeight = 30;
  // The frame's outer bounds are 100..500 and 100..400, one past Qt's inclusive right and bottom. Three corners reach
  // twice the strip, on and off the strips themselves; the top right one does not.
  expectZones(calculator, {{{99, 250}, ""},      {{100, 250}, "L"},    {{109, 250}, "L"},    {{110, 250}, ""},
                           {{490, 250}, ""},     {{491, 250}, "R"},    {{500, 250}, "R"},    {{501, 250}, ""},
                           {{300, 99}, "M"},     {{300, 100}, "TM"},   {{300, 109}, "TM"},   {{300, 110}, "M"},
                           {{300, 130}, "M"},    {{300, 131}, ""},     {{300, 390}, ""},     {{300, 391}, "B"},
                           {{300, 400}, "B"},    {{300, 401}, ""},     {{118, 118}, "tlM"},  {{119, 118}, "M"},
                           {{109, 118}, "LtlM"}, {{118, 109}, "TtlM"}, {{118, 382}, "bl"},   {{118, 381}, ""},
                           {{482, 382}, "br"},   {{481, 382}, ""},     {{482, 118}, "M"},    {{491, 109}, "RTtrM"},
                           {{490, 109}, "TM"},   {{491, 110}, "RM"},   {{500, 100}, "RTtrM"}});
}

TEST(CCursorPosCalculator, MovesTheStripsButNotTheMoveBarInwardsByTheInset) {
  CCursorPosCalculator calculator;
  calculator.edgeInset = 8;
  calculator.moveBarHeight = 4;
  expectZones(calculator, {{{107, 250}, ""},
                           {{108, 250}, "L"},
                           {{113, 250}, "L"},
                           {{114, 250}, ""},
                           {{492, 250}, "R"},
                           {{493, 250}, ""},
                           {{300, 104}, "M"},
                           {{300, 108}, "T"},
                           {{300, 392}, "B"},
                           {{300, 393}, ""}});
}

TEST(FramelessGeometry, ResizesByTheZoneThatWasPressedDownToTheMinimum) {
  const QSize minimum(200, 150);
  struct Case {
    const char* what;
    bool CCursorPosCalculator::*zone;
    QPoint to;
    QRect frame;  // null: the drag does nothing
  };
  using C = CCursorPosCalculator;
  const Case cases[] = {
      {"left", &C::onLeftEdge, {50, 7}, {50, 100, 450, 300}},
      {"right", &C::onRightEdge, {599, 7}, {100, 100, 500, 300}},
      {"top", &C::onTopEdge, {7, 50}, {100, 50, 400, 350}},
      {"bottom", &C::onBottomEdge, {7, 499}, {100, 100, 400, 400}},
      {"top left", &C::onTopLeftCorner, {90, 80}, {90, 80, 410, 320}},
      {"bottom left", &C::onBottomLeftCorner, {90, 409}, {90, 100, 410, 310}},
      {"top right", &C::onTopRightCorner, {509, 80}, {100, 80, 410, 320}},
      {"bottom right", &C::onBottomRightCorner, {509, 409}, {100, 100, 410, 310}},
      {"down to the minimum", &C::onLeftEdge, {300, 0}, {300, 100, 200, 300}},
      {"a pixel below the minimum", &C::onLeftEdge, {301, 0}, kFrame},
      {"narrow: only the height follows", &C::onBottomRightCorner, {150, 449}, {100, 100, 400, 350}},
      {"low: only the width follows", &C::onTopLeftCorner, {50, 399}, {50, 100, 450, 300}},
      {"left past right", &C::onLeftEdge, {500, 0}, {}},
      {"top past bottom, width untouched too", &C::onTopLeftCorner, {50, 400}, {}},
      {"no zone", &C::onMoveBar, {50, 50}, kFrame},
  };
  for (const Case& c : cases) {
    CCursorPosCalculator pressed;
    pressed.*c.zone = true;
    const auto frame = CFramelessHandler::resizedFrame(pressed, kFrame, minimum, c.to);
    EXPECT_EQ(frame.has_value(), c.frame.isValid()) << c.what;
    EXPECT_EQ(frame.value_or(QRect()), c.frame) << c.what;
  }
}

TEST(FramelessGeometry, PutsARestoredWindowUnderTheCursorAndOnTheScreen) {
  EXPECT_EQ(CFramelessHandler::restoredTopLeft(100, 401, 1000), QPoint(-6, -6));
  EXPECT_EQ(CFramelessHandler::restoredTopLeft(200, 401, 1000), QPoint(-6, -6));
  EXPECT_EQ(CFramelessHandler::restoredTopLeft(201, 401, 1000), QPoint(1, -6));
  EXPECT_EQ(CFramelessHandler::restoredTopLeft(799, 401, 1000), QPoint(599, -6));
  EXPECT_EQ(CFramelessHandler::restoredTopLeft(800, 401, 1000), QPoint(605, -6));
}

class CFramelessHandlerTest : public testing::Test {
 protected:
  CFramelessHandlerTest() {
    widget_.setWindowFlags(Qt::FramelessWindowHint);
    widget_.setGeometry(kFrame);
    widget_.setMinimumSize(200, 150);
    handler_.activateOn(&widget_);
    handler_.setBorderWidth(9);
    handler_.setMoveBarHeight(30);
  }

  void mouse(QEvent::Type type, QPoint global, Qt::MouseButton button = Qt::LeftButton) {
    const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : button;
    QMouseEvent event(type, widget_.mapFromGlobal(global), global, changed, button, Qt::NoModifier);
    EXPECT_FALSE(handler_.eventFilter(&widget_, &event));
  }
  void drag(QPoint from, QPoint to) {
    mouse(QEvent::MouseButtonPress, from);
    mouse(QEvent::MouseMove, to);
    mouse(QEvent::MouseButtonRelease, to);
  }
  void hover(QPoint global) {
    QHoverEvent event(QEvent::HoverMove, widget_.mapFromGlobal(global), QPoint());
    QApplication::sendEvent(&widget_, &event);
  }

  QWidget widget_;
  CFramelessHandler handler_{nullptr};
};

TEST_F(CFramelessHandlerTest, DragsMoveInTheBarAndResizeOnTheEdges) {
  drag({300, 120}, {350, 160});
  EXPECT_EQ(widget_.geometry(), QRect(150, 140, 400, 300));
  drag({300, 300}, {350, 340});  // in the middle: nothing
  EXPECT_EQ(widget_.geometry(), QRect(150, 140, 400, 300));
  drag({300, 145}, {300, 120});  // the top edge wins over the move bar
  EXPECT_EQ(widget_.geometry(), QRect(150, 120, 400, 320));
  drag({549, 300}, {579, 300});
  EXPECT_EQ(widget_.geometry(), QRect(150, 120, 430, 320));
}

TEST_F(CFramelessHandlerTest, ThePressDecidesUntilTheRelease) {
  mouse(QEvent::MouseButtonPress, {300, 120});
  mouse(QEvent::MouseMove, {105, 105});  // over where the corner was: still a move
  mouse(QEvent::MouseButtonRelease, {105, 105});
  mouse(QEvent::MouseMove, {300, 300});
  EXPECT_EQ(widget_.geometry(), QRect(-95, 85, 400, 300));
}

TEST_F(CFramelessHandlerTest, TheEventsTypeDecidesWhateverIsWatched) {
  QWidget other;
  QMouseEvent press(QEvent::MouseButtonPress, QPoint(), QPoint(300, 120), Qt::LeftButton, Qt::LeftButton, {});
  QMouseEvent move(QEvent::MouseMove, QPoint(), QPoint(350, 160), Qt::NoButton, Qt::LeftButton, {});
  EXPECT_FALSE(handler_.eventFilter(&other, &press));
  EXPECT_FALSE(handler_.eventFilter(&other, &move));
  EXPECT_EQ(widget_.geometry(), kFrame.translated(50, 40));
  EXPECT_FALSE(CFramelessHandler(nullptr).eventFilter(&other, &press));
}

TEST_F(CFramelessHandlerTest, OtherButtonsStartNothingButAnyReleaseEndsADrag) {
  QSignalSpy toggled(&handler_, SIGNAL(toggleMaximize()));
  mouse(QEvent::MouseButtonPress, {300, 120}, Qt::RightButton);
  mouse(QEvent::MouseMove, {350, 160}, Qt::RightButton);
  mouse(QEvent::MouseButtonDblClick, {300, 120}, Qt::RightButton);
  EXPECT_EQ(widget_.geometry(), kFrame);
  EXPECT_EQ(toggled.count(), 0);
  mouse(QEvent::MouseButtonDblClick, {300, 120});
  mouse(QEvent::MouseButtonDblClick, {300, 200});  // below the move bar
  EXPECT_EQ(toggled.count(), 1);

  mouse(QEvent::MouseButtonPress, {300, 120});
  mouse(QEvent::MouseButtonRelease, {300, 120}, Qt::RightButton);
  mouse(QEvent::MouseMove, {350, 160});
  EXPECT_EQ(widget_.geometry(), kFrame);
}

TEST_F(CFramelessHandlerTest, SwitchesAndSizesOutOfRange) {
  handler_.setWidgetMovable(false);
  drag({300, 120}, {350, 160});
  handler_.setWidgetResizable(false);
  drag({499, 250}, {600, 250});
  hover({499, 250});
  EXPECT_EQ(widget_.geometry(), kFrame);
  EXPECT_EQ(widget_.cursor().shape(), Qt::ArrowCursor);
  handler_.setWidgetMovable(true);
  handler_.setBorderWidth(-1);
  EXPECT_EQ(handler_.borderWidth(), 9);
  handler_.setMoveBarHeight(-1);
  EXPECT_EQ(handler_.moveBarHeight(), -1);
  handler_.activateOn(nullptr);
  drag({300, 120}, {350, 160});  // still the first window's; no move bar any more
  EXPECT_EQ(widget_.geometry(), kFrame);
}

TEST_F(CFramelessHandlerTest, HoveringShowsTheCursorAndLeavingTakesItBack) {
  struct Case {
    QPoint at;
    Qt::CursorShape shape;
  };
  for (const Case& c :
       {Case{{118, 118}, Qt::SizeFDiagCursor}, Case{{482, 382}, Qt::SizeFDiagCursor},
        Case{{499, 101}, Qt::SizeBDiagCursor}, Case{{118, 382}, Qt::SizeBDiagCursor},
        Case{{482, 101}, Qt::SizeVerCursor}, Case{{300, 398}, Qt::SizeVerCursor}, Case{{100, 250}, Qt::SizeHorCursor},
        Case{{300, 250}, Qt::ArrowCursor}, Case{{499, 250}, Qt::SizeHorCursor}}) {
    hover(c.at);
    EXPECT_EQ(widget_.cursor().shape(), c.shape) << c.at.x() << ", " << c.at.y();
  }
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&widget_, &leave);
  EXPECT_EQ(widget_.cursor().shape(), Qt::ArrowCursor);

  hover({499, 250});
  mouse(QEvent::MouseButtonPress, {499, 250});
  QApplication::sendEvent(&widget_, &leave);  // during a drag the cursor stays
  EXPECT_EQ(widget_.cursor().shape(), Qt::SizeHorCursor);
}

TEST_F(CFramelessHandlerTest, MaximizedWindowsFollowTheCursorOutOfThatStateAndDoNotResize) {
  handler_.setWindowState(Qt::WindowMaximized);
  drag({499, 250}, {600, 250});
  hover({499, 250});
  EXPECT_EQ(widget_.geometry(), kFrame);
  EXPECT_EQ(widget_.cursor().shape(), Qt::ArrowCursor);

  QObject::connect(&handler_, &CFramelessHandler::toggleMaximize, [this] {
    handler_.setWindowState(Qt::WindowNoState);
    widget_.resize(300, 200);
  });
  mouse(QEvent::MouseButtonPress, {300, 120});
  mouse(QEvent::MouseMove, {310, 120});
  EXPECT_EQ(widget_.geometry(), QRect(160, -6, 300, 200));
  mouse(QEvent::MouseMove, {320, 130});
  EXPECT_EQ(widget_.geometry(), QRect(170, 4, 300, 200));
}

TEST_F(CFramelessHandlerTest, AWindowBackFromMinimizedIsRepaintedAtOnce) {
  struct Repaints : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::UpdateRequest;
      return false;
    }
    int count = 0;
  } repaints;
  widget_.installEventFilter(&repaints);
  for (const bool minimized : {true, false}) {
    QWindowStateChangeEvent event(minimized ? Qt::WindowMinimized : Qt::WindowMinimized | Qt::WindowMaximized);
    EXPECT_FALSE(handler_.eventFilter(&widget_, &event));
    EXPECT_EQ(widget_.testAttribute(Qt::WA_Mapped), minimized);
  }
  QApplication::sendPostedEvents(&widget_, QEvent::UpdateRequest);
  EXPECT_GE(repaints.count, 1);
  widget_.setAttribute(Qt::WA_Mapped, false);
}

// A window's own slots are found by name.
class MaximizingWidget : public QWidget {
  Q_OBJECT
 public Q_SLOTS:
  void on_MaxRestore() { ++toggles; }
  void on_MoveMaximized() { ++moves; }

 public:
  int toggles = 0;
  int moves = 0;
};

TEST(CFramelessHandlerSlots, ConnectsToTheWindowsSlotsByName) {
  MaximizingWidget window;
  CFramelessHandler handler;
  handler.activateOn(&window);
  emit handler.toggleMaximize();
  emit handler.movingMaximized();
  EXPECT_EQ(window.toggles, 1);
  EXPECT_EQ(window.moves, 1);
}

}  // namespace

#include "CFramelessHandlerTest.moc"
