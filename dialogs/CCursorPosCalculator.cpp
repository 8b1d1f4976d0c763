// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CCursorPosCalculator.h"

CCursorPosCalculator::CCursorPosCalculator() = default;

void CCursorPosCalculator::reset() {
  CCursorPosCalculator cleared;
  cleared.borderWidth = borderWidth;
  cleared.edgeInset = edgeInset;
  cleared.moveBarHeight = moveBarHeight;
  *this = cleared;
}

void CCursorPosCalculator::recalculate(const QPoint& globalPos, const QRect& frameRect) {
  const auto within = [](int low, int value, int high) { return low <= value && value <= high; };
  const int x = globalPos.x();
  const int y = globalPos.y();
  const int left = frameRect.left() + edgeInset;
  const int top = frameRect.top() + edgeInset;
  const int right = frameRect.right() + 1 - edgeInset;
  const int bottom = frameRect.bottom() + 1 - edgeInset;

  onLeftEdge = within(left, x, left + borderWidth);
  onRightEdge = within(right - borderWidth, x, right);
  onTopEdge = within(top, y, top + borderWidth);
  onBottomEdge = within(bottom - borderWidth, y, bottom);

  nearLeftEdge = within(left, x, left + 2 * borderWidth);
  nearRightEdge = within(right - 2 * borderWidth, x, right);
  nearTopEdge = within(top, y, top + 2 * borderWidth);
  nearBottomEdge = within(bottom - 2 * borderWidth, y, bottom);

  onTopLeftCorner = (onLeftEdge && onTopEdge) || (nearLeftEdge && nearTopEdge);
  onBottomLeftCorner = (onLeftEdge && onBottomEdge) || (nearLeftEdge && nearBottomEdge);
  onBottomRightCorner = (onRightEdge && onBottomEdge) || (nearRightEdge && nearBottomEdge);
  onTopRightCorner = onTopEdge && onRightEdge;

  onMoveBar = y <= frameRect.top() + moveBarHeight;
  onEdges = onLeftEdge || onRightEdge || onTopEdge || onBottomEdge || onTopLeftCorner || onBottomLeftCorner ||
            onTopRightCorner || onBottomRightCorner;
}
