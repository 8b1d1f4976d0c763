// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QThreadPool>

#include "tests/support/Sandbox.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Listing the cases is part of the build, where the leaks of the platform plug-in are not suppressed.
  if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  Sandbox::Install();
  QApplication application(argc, argv);
  const int result = RUN_ALL_TESTS();
  // Qt converts large images in threads, and one that is just ending looks like a leak.
  QThreadPool::globalInstance()->waitForDone();
  return result;
}
