// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>

// A line on the standard error with bar, rate and time left; only on a terminal, and only while more than a second of
// work remains.
class ProgressBar {
 public:
  // The line begins with `label`, a literal.
  explicit ProgressBar(bool wanted, const char* label = "");

  void Show(std::size_t done, std::size_t total);
  // Takes the line away, for other output or for good.
  void Hide();

 private:
  using Clock = std::chrono::steady_clock;
  bool enabled_;
  const char* label_;
  bool visible_ = false;
  Clock::time_point start_;
  Clock::time_point lastShown_;
};
