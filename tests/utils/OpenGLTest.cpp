// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "utils/CUtils.h"

namespace {

// The "offscreen" platform claims to have OpenGL and then hands out no context.
TEST(OpenGL, IsAbsentWithoutACrashWhereNoContextCanBeMade) {
  EXPECT_FALSE(CUtils::CheckOpenGLSupport());
  EXPECT_FALSE(CUtils::CheckOpenGLSupport());
}

}  // namespace
