// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

class QBoxLayout;

// Two widgets side by side, or one below the other where there is no room for both.
class WrappingRow : public QWidget {
  Q_OBJECT

 public:
  // Both become its children. The first gets the room that is left.
  WrappingRow(QWidget* first, QWidget* second);
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Arrange();

  QWidget* first_;
  QWidget* second_;
  QBoxLayout* layout_;
};
