// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPoint>
#include <QRect>

/// Finds the parts of a frameless window's frame that a point is on. Positions and sizes are in screen pixels.
///
/// A strip along an edge is borderWidth + 1 pixels wide, both ends included, and one pixel wider than the frame at the
/// right and bottom. Corners reach twice as far along both of their edges, except the top right one, where the close
/// button needs the room.
class CCursorPosCalculator {
 public:
  CCursorPosCalculator();
  /// Clears the flags and keeps the three sizes.
  void reset();
  /// Sets every flag for the point `globalPos` and a window whose outer frame is `frameRect`.
  void recalculate(const QPoint& globalPos, const QRect& frameRect);

  bool onEdges = false;              ///< on any edge or corner
  bool onLeftEdge = false;           ///< within the strip along the left edge
  bool onRightEdge = false;          ///< within the strip along the right edge
  bool onTopEdge = false;            ///< within the strip along the top edge
  bool onBottomEdge = false;         ///< within the strip along the bottom edge
  bool nearLeftEdge = false;         ///< within twice the strip along the left edge
  bool nearRightEdge = false;        ///< within twice the strip along the right edge
  bool nearTopEdge = false;          ///< within twice the strip along the top edge
  bool nearBottomEdge = false;       ///< within twice the strip along the bottom edge
  bool onTopLeftCorner = false;      ///< on one of the edges and near the other
  bool onBottomLeftCorner = false;   ///< on one of the edges and near the other
  bool onTopRightCorner = false;     ///< on both edges, without the doubled reach
  bool onBottomRightCorner = false;  ///< on one of the edges and near the other
  bool onMoveBar = false;            ///< at or above the bottom of the move bar
  int borderWidth = 5;               ///< width of a resize strip
  int edgeInset = 0;                 ///< how far the strips are inside the frame's outer edge
  int moveBarHeight = 0;             ///< height of the move bar, from the frame's top
};
