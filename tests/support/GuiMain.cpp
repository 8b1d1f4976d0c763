// SPDX-License-Identifier: Apache-2.0
#include <QApplication>

#include "tests/support/Sandbox.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  Sandbox::Install();
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
