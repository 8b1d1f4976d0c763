// SPDX-License-Identifier: Apache-2.0
#include "host/run/JobBoard.h"

#include <algorithm>

std::optional<std::size_t> JobBoard::Claim(pid_t worker) {
  while (!Stopped()) {
    const std::size_t item = shared_[kNext]++;
    if (item >= items_) break;
    pid_t nobody = 0;
    if (holders_[item].compare_exchange_strong(nobody, worker)) return item;
  }
  return std::nullopt;
}

std::vector<std::size_t> JobBoard::HeldBy(pid_t worker) const {
  std::vector<std::size_t> held;
  for (std::size_t item = 0; item < items_; ++item) {
    if (holders_[item].load(std::memory_order_relaxed) == worker) held.push_back(item);
  }
  return held;
}

std::size_t JobBoard::Left() const {
  return items_ - std::min<std::size_t>(shared_[kNext], items_);
}
