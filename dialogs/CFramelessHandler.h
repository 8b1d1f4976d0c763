// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>

#include "dialogs/CCursorPosCalculator.h"

class QHoverEvent;
class QMouseEvent;
class QWidget;
class QWindowStateChangeEvent;

/// Moves and resizes one frameless top-level window with the mouse: a drag in the move bar along its top moves it, a
/// drag on an edge or corner resizes it down to its minimum size, and hovering over an edge shows the resize cursor.
///
/// The handler watches the window's events and never consumes one. What a drag does is decided at the press and stays
/// until the release. The handler does not track maximization: an owner that does calls setWindowState().
class CFramelessHandler : public QObject {
  Q_OBJECT

 public:
  /// Handles no window yet; moving and resizing are on.
  explicit CFramelessHandler(QObject* parent = nullptr);
  ~CFramelessHandler() override;

  /// Starts handling the window, which is not owned; null does nothing. The signals are connected by name to the slots
  /// on_MaxRestore() and on_MoveMaximized() of the window; one that lacks them gets Qt's warning and no reaction.
  void activateOn(QWidget* topLevelWidget);

  /// Switches moving by the move bar on or off.
  void setWidgetMovable(bool movable);
  /// Whether a drag in the move bar moves the window.
  bool isWidgetMovable() const;
  /// Switches resizing and the resize cursors on or off.
  void setWidgetResizable(bool resizable);
  /// Whether a drag on an edge or corner resizes the window.
  bool isWidgetResizable() const;

  /// Width of the resize strips in pixels; a negative one is ignored.
  void setBorderWidth(int width);
  /// In pixels; 5 unless set.
  int borderWidth() const;
  /// Height of the move bar in pixels, unchecked.
  void setMoveBarHeight(int height);
  /// In pixels; 0 unless set.
  int moveBarHeight() const;
  /// How many pixels the resize strips are inside the window's outer edge.
  void setEdgeInset(int inset);
  /// In pixels; 0 unless set.
  int edgeInset() const { return pressCursorPos.edgeInset; }
  /// Qt::WindowMaximized switches resizing and cursors off; a drag in the move bar then restores the window and takes
  /// it along.
  void setWindowState(int state) { windowState = state; }

  /// Handles the event as one of the window, by its type alone; `watched` is not used. Always false, so that
  /// every event goes on to the watched object. Does nothing before activateOn().
  bool eventFilter(QObject* watched, QEvent* event) override;

  /// The frame after the zone in `pressed` was dragged to `globalPos`; an axis that would fall below the minimum keeps
  /// its extent. No value when an edge was dragged past the opposite one.
  static std::optional<QRect> resizedFrame(const CCursorPosCalculator& pressed, const QRect& frame,
                                           const QSize& minimumSize, const QPoint& globalPos);
  /// The resize cursor for the zones in `hovered`; no value when it is on no edge.
  static std::optional<Qt::CursorShape> resizeCursor(const CCursorPosCalculator& hovered);
  /// The position of a window that is dragged out of the maximized state: under the cursor, but within the sides of a
  /// screen that is `availableWidth` wide; the shadow margin may be outside.
  static QPoint restoredTopLeft(int cursorX, int frameWidth, int availableWidth);

 Q_SIGNALS:
  /// Double click in the move bar, or start of a drag there while the window is maximized.
  void toggleMaximize();
  /// Never emitted by the handler.
  void movingMaximized();

 private:
  void handleMousePressEvent(QMouseEvent* event);
  void handleMouseReleaseEvent(QMouseEvent* event);
  void handleMouseMoveEvent(QMouseEvent* event);
  void handleLeaveEvent(QEvent* event);
  void handleHoverMoveEvent(QHoverEvent* event);
  void handleDoubleClickEvent(QMouseEvent* event);
  void handleStateChangeEvent(QWindowStateChangeEvent* event);
  void resizeWidget(const QPoint& globalPos);
  void moveWidget(const QPoint& globalPos);
  void restoreAndFollow(const QPoint& globalPos);
  void updateCursorShape(const QPoint& globalPos);

  CCursorPosCalculator pressCursorPos;
  CCursorPosCalculator hoverCursorPos;
  int windowState = 0;
  QPoint dragOffset;
  QWidget* widget = nullptr;
  bool widgetMovable = true;
  bool widgetResizable = true;
  bool cursorChanged = false;
  bool leftButtonPressed = false;
  bool pressedOnMoveBar = false;
  bool pressedOnEdges = false;
};
