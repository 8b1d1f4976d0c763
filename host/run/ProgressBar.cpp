// SPDX-License-Identifier: Apache-2.0
#include "host/run/ProgressBar.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "host/base/Console.h"

namespace {

constexpr std::chrono::milliseconds kInterval(200);
constexpr double kLeastSecondsLeft = 1.0;
constexpr std::size_t kWidth = 30;

}  // namespace

ProgressBar::ProgressBar(bool wanted, const char* label)
    : enabled_(wanted && isatty(STDERR_FILENO) == 1), label_(label), start_(Clock::now()), lastShown_(start_) {}

void ProgressBar::Show(std::size_t done, std::size_t total) {
  if (!enabled_) return;
  const Clock::time_point now = Clock::now();
  if (now - lastShown_ < kInterval || done == 0 || total == 0) return;
  lastShown_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(done) / seconds;
  const double left = static_cast<double>(total - done) / rate;
  if (left <= kLeastSecondsLeft) return Hide();

  const std::size_t filled = kWidth * done / total;
  const auto whole = static_cast<unsigned long>(std::lround(left));
  char line[160];
  const int length = std::snprintf(line, sizeof line, "\r%s[%s%s] %zu/%zu  %.0f/s  %lu:%02lu left\x1b[K", label_,
                                   std::string(filled, '#').c_str(), std::string(kWidth - filled, '.').c_str(), done,
                                   total, rate, whole / 60, whole % 60);
  Console::WriteAll(STDERR_FILENO, {line, static_cast<std::size_t>(length)});
  visible_ = true;
}

void ProgressBar::Hide() {
  if (visible_) Console::WriteAll(STDERR_FILENO, "\r\x1b[K");
  visible_ = false;
}
