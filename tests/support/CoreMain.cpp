// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>

#include "tests/support/Sandbox.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  Sandbox::Install();
  QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
