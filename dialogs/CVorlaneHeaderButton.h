// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QToolButton>

/// A tool button in a dialog's header. A double click on it is one press, and never reaches the header below it.
class CVorlaneHeaderButton : public QToolButton {
 public:
  using QToolButton::QToolButton;

 protected:
  /// Consumes the second press of a double click.
  void mouseDoubleClickEvent(QMouseEvent* event) override;
};
