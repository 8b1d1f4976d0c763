// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>

// Measures time during which this process ran as it should. The process looks at it every kTick or so; when it comes
// much later, the machine or the process was stopped, suspended or starved, and no more than one tick counts.
class RunningTime {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kTick{100};

  explicit RunningTime(Clock::time_point now) : last_(now) {}

  // What has to be added to every time that runs, at least kTick after the call before, else 0.
  Clock::duration Advance(Clock::time_point now) {
    const Clock::duration passed = now - last_;
    if (passed < kTick) return {};
    last_ = now;
    return passed < 2 * kTick ? passed : kTick;
  }

 private:
  Clock::time_point last_;
};
