// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/MainWindow.h"

MainWindow::MainWindow() {
  setObjectName(QStringLiteral("VorlaneClass"));
  setWindowTitle(tr("PDF Actions"));
  resize(1100, 720);
}

void MainWindow::Open(const QStringList&) {}
