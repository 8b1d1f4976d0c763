// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>

// Measures the time during which this process really ran. The process calls Advance about every kTick. After a much
// longer pause the machine or the process was stopped, suspended or starved, and only one tick counts.
class RunningTime {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kTick{100};

  explicit RunningTime(Clock::time_point now) : last_(now) {}

  // The time to add to every measured time: 0 until kTick has passed since the call before.
  Clock::duration Advance(Clock::time_point now) {
    const Clock::duration passed = now - last_;
    if (passed < kTick) return {};
    last_ = now;
    return passed < 2 * kTick ? passed : kTick;
  }

 private:
  Clock::time_point last_;
};
