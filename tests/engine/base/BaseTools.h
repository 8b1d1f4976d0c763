// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "engine/base/EngineError.h"

// The code of the error that the action throws, kErrorNone without one.
inline int CodeOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const engine::EngineError& error) {
    return error.code();
  }
  return kErrorNone;
}
