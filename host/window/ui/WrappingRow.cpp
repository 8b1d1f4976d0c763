// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/WrappingRow.h"

#include <algorithm>
#include <QBoxLayout>
#include <QEvent>

WrappingRow::WrappingRow(QWidget* first, QWidget* second)
    : first_(first), second_(second), layout_(new QBoxLayout(QBoxLayout::LeftToRight, this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->addWidget(first, 1);
  layout_->addWidget(second);
}

QSize WrappingRow::minimumSizeHint() const {
  const int width = std::max(first_->minimumSizeHint().width(), second_->minimumSizeHint().width());
  return {width, layout_->totalMinimumSize().height()};
}

void WrappingRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Arrange();
}

bool WrappingRow::event(QEvent* event) {
  if (event->type() == QEvent::LayoutRequest) Arrange();
  return QWidget::event(event);
}

void WrappingRow::Arrange() {
  const int both = first_->minimumSizeHint().width() + layout_->spacing() + second_->minimumSizeHint().width();
  const auto direction = both <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (direction == layout_->direction()) return;
  layout_->setDirection(direction);
  layout_->setAlignment(second_, direction == QBoxLayout::TopToBottom ? Qt::AlignRight : Qt::Alignment());
  updateGeometry();
}
