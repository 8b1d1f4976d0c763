// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CVorlaneHeaderButton.h"

#include <QMouseEvent>

void CVorlaneHeaderButton::mouseDoubleClickEvent(QMouseEvent* event) {
  event->accept();
}
