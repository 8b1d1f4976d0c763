// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CFramelessHandler.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QWidget>
#include <QWindowStateChangeEvent>

namespace {

// The shadow margin of a restored window; it may be off-screen.
constexpr int kShadowMargin = 6;

}  // namespace

CFramelessHandler::CFramelessHandler(QObject* parent) : QObject(parent) {}

CFramelessHandler::~CFramelessHandler() = default;

void CFramelessHandler::activateOn(QWidget* topLevelWidget) {
  if (!topLevelWidget) return;
  widget = topLevelWidget;
  widget->installEventFilter(this);
  widget->setAttribute(Qt::WA_Hover, true);
  connect(this, SIGNAL(toggleMaximize()), widget, SLOT(on_MaxRestore()));
  connect(this, SIGNAL(movingMaximized()), widget, SLOT(on_MoveMaximized()));
}

void CFramelessHandler::setWidgetMovable(bool movable) {
  widgetMovable = movable;
}

bool CFramelessHandler::isWidgetMovable() const {
  return widgetMovable;
}

void CFramelessHandler::setWidgetResizable(bool resizable) {
  widgetResizable = resizable;
}

bool CFramelessHandler::isWidgetResizable() const {
  return widgetResizable;
}

int CFramelessHandler::borderWidth() const {
  return pressCursorPos.borderWidth;
}

int CFramelessHandler::moveBarHeight() const {
  return pressCursorPos.moveBarHeight;
}

void CFramelessHandler::setBorderWidth(int width) {
  if (width < 0) return;
  pressCursorPos.borderWidth = width;
  hoverCursorPos.borderWidth = width;
}

void CFramelessHandler::setMoveBarHeight(int height) {
  pressCursorPos.moveBarHeight = height;
  hoverCursorPos.moveBarHeight = height;
}

void CFramelessHandler::setEdgeInset(int inset) {
  pressCursorPos.edgeInset = inset;
  hoverCursorPos.edgeInset = inset;
}

bool CFramelessHandler::eventFilter(QObject*, QEvent* event) {
  if (!widget) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      handleMousePressEvent(static_cast<QMouseEvent*>(event));
      break;
    case QEvent::MouseButtonRelease:
      handleMouseReleaseEvent(static_cast<QMouseEvent*>(event));
      break;
    case QEvent::MouseButtonDblClick:
      handleDoubleClickEvent(static_cast<QMouseEvent*>(event));
      break;
    case QEvent::MouseMove:
      handleMouseMoveEvent(static_cast<QMouseEvent*>(event));
      break;
    case QEvent::Leave:
      handleLeaveEvent(event);
      break;
    case QEvent::WindowStateChange:
      handleStateChangeEvent(static_cast<QWindowStateChangeEvent*>(event));
      break;
    case QEvent::HoverMove:
      handleHoverMoveEvent(static_cast<QHoverEvent*>(event));
      break;
    default:
      break;
  }
  return false;
}

void CFramelessHandler::handleMousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  leftButtonPressed = true;
  const QRect frame = widget->frameGeometry();
  pressCursorPos.recalculate(event->globalPos(), frame);
  dragOffset = event->globalPos() - frame.topLeft();
  pressedOnEdges = pressCursorPos.onEdges;
  if (!pressedOnEdges) pressedOnMoveBar = pressCursorPos.onMoveBar;
}

void CFramelessHandler::handleMouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    leftButtonPressed = false;
    pressCursorPos.reset();
  }
  pressedOnMoveBar = false;
  pressedOnEdges = false;
}

void CFramelessHandler::handleMouseMoveEvent(QMouseEvent* event) {
  const QPoint globalPos = event->globalPos();
  if (!leftButtonPressed) {
    if (widgetResizable) updateCursorShape(globalPos);
    return;
  }
  const bool maximized = windowState == Qt::WindowMaximized;
  if (widgetResizable && pressedOnEdges && !pressedOnMoveBar && !maximized) {
    resizeWidget(globalPos);
  } else if (widgetMovable && !pressedOnEdges && pressedOnMoveBar) {
    maximized ? restoreAndFollow(globalPos) : moveWidget(globalPos);
  }
}

void CFramelessHandler::handleLeaveEvent(QEvent*) {
  if (!leftButtonPressed) widget->unsetCursor();
}

void CFramelessHandler::handleHoverMoveEvent(QHoverEvent* event) {
  if (widgetResizable) updateCursorShape(widget->mapToGlobal(event->posF().toPoint()));
}

void CFramelessHandler::handleDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressCursorPos.recalculate(event->globalPos(), widget->frameGeometry());
  if (pressCursorPos.onMoveBar) emit toggleMaximize();
}

void CFramelessHandler::handleStateChangeEvent(QWindowStateChangeEvent* event) {
  // A window that comes back from the minimized state must repaint at once.
  widget->setAttribute(Qt::WA_Mapped, event->oldState() == Qt::WindowMinimized);
  widget->setFocus(Qt::OtherFocusReason);
  widget->raise();
  QCoreApplication::postEvent(widget, new QEvent(QEvent::UpdateRequest), Qt::HighEventPriority);
}

std::optional<QRect> CFramelessHandler::resizedFrame(const CCursorPosCalculator& pressed, const QRect& frame,
                                                     const QSize& minimumSize, const QPoint& globalPos) {
  int left = frame.left();
  int top = frame.top();
  int right = frame.right();
  int bottom = frame.bottom();
  if (pressed.onTopLeftCorner) {
    left = globalPos.x();
    top = globalPos.y();
  } else if (pressed.onBottomLeftCorner) {
    left = globalPos.x();
    bottom = globalPos.y();
  } else if (pressed.onTopRightCorner) {
    right = globalPos.x();
    top = globalPos.y();
  } else if (pressed.onBottomRightCorner) {
    right = globalPos.x();
    bottom = globalPos.y();
  } else if (pressed.onLeftEdge) {
    left = globalPos.x();
  } else if (pressed.onRightEdge) {
    right = globalPos.x();
  } else if (pressed.onTopEdge) {
    top = globalPos.y();
  } else if (pressed.onBottomEdge) {
    bottom = globalPos.y();
  }
  if (left > right || top > bottom) return std::nullopt;

  if (right - left + 1 < minimumSize.width()) {
    if (left == frame.left()) right = frame.right();
    left = frame.left();
  }
  if (bottom - top + 1 < minimumSize.height()) {
    if (top == frame.top()) bottom = frame.bottom();
    top = frame.top();
  }
  return QRect(QPoint(left, top), QPoint(right, bottom));
}

void CFramelessHandler::resizeWidget(const QPoint& globalPos) {
  const QRect current = widget->frameGeometry();
  const auto frame = resizedFrame(pressCursorPos, current, widget->minimumSize(), globalPos);
  if (!frame) return;
  // Move and resize as one request: in between, a window system may report the moved window with its old size, and the
  // next step of the drag would take the far edge from there.
  widget->setGeometry(QRect(frame->topLeft() + widget->geometry().topLeft() - current.topLeft(), frame->size()));
}

void CFramelessHandler::moveWidget(const QPoint& globalPos) {
  pressCursorPos.recalculate(globalPos, widget->frameGeometry());
  if (pressedOnMoveBar) widget->move(globalPos - dragOffset);
}

QPoint CFramelessHandler::restoredTopLeft(int cursorX, int frameWidth, int availableWidth) {
  const int half = frameWidth / 2;
  if (cursorX - half <= 0) return {-kShadowMargin, -kShadowMargin};
  if (cursorX < availableWidth - half) return {cursorX - half, -kShadowMargin};
  return {availableWidth + kShadowMargin - frameWidth, -kShadowMargin};
}

void CFramelessHandler::restoreAndFollow(const QPoint& globalPos) {
  emit toggleMaximize();
  const int availableWidth = QGuiApplication::primaryScreen()->availableGeometry().width();
  widget->move(restoredTopLeft(globalPos.x(), widget->frameGeometry().width(), availableWidth));
  dragOffset = globalPos - widget->frameGeometry().topLeft();
}

std::optional<Qt::CursorShape> CFramelessHandler::resizeCursor(const CCursorPosCalculator& hovered) {
  if (hovered.onTopLeftCorner || hovered.onBottomRightCorner) return Qt::SizeFDiagCursor;
  if (hovered.onTopRightCorner || hovered.onBottomLeftCorner) return Qt::SizeBDiagCursor;
  if (hovered.onLeftEdge || hovered.onRightEdge) return Qt::SizeHorCursor;
  if (hovered.onTopEdge || hovered.onBottomEdge) return Qt::SizeVerCursor;
  return std::nullopt;
}

void CFramelessHandler::updateCursorShape(const QPoint& globalPos) {
  if (windowState == Qt::WindowMaximized) {
    if (cursorChanged) widget->unsetCursor();
    return;
  }
  hoverCursorPos.recalculate(globalPos, widget->frameGeometry());
  if (const auto shape = resizeCursor(hoverCursorPos)) {
    widget->setCursor(*shape);
    cursorChanged = true;
  } else if (cursorChanged) {
    widget->unsetCursor();
    cursorChanged = false;
  }
}
