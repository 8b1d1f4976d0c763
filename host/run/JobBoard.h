// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "host/run/SharedMemory.h"

// Which worker process holds which of a run's items, in memory that all of them share. Workers claim items by
// themselves; the main process settles them. Whenever a worker is killed, what it held is known exactly.
class JobBoard {
 public:
  explicit JobBoard(std::size_t items) : items_(items), holders_(items + 1), shared_(2) {}

  // The next item that nobody holds, now held by `worker`; nothing when there is none left or the run is to stop.
  std::optional<std::size_t> Claim(pid_t worker);
  // The item's result is known; it is never claimed again. False when it was settled before.
  bool Settle(std::size_t item) { return holders_[item].exchange(kSettled) != kSettled; }
  // The items that a worker has claimed and that are not settled.
  std::vector<std::size_t> HeldBy(pid_t worker) const;

  // How many items are left to claim. One whose worker was killed at the very moment of claiming is found only after
  // Rewind(), which may be called when no worker lives.
  std::size_t Left() const;
  void Rewind() { shared_[kNext] = 0; }

  // Lets workers end before their next item.
  void Stop() { shared_[kStop] = 1; }
  bool Stopped() const { return shared_[kStop] != 0; }

 private:
  static constexpr pid_t kSettled = -1;
  static constexpr std::size_t kNext = 0;
  static constexpr std::size_t kStop = 1;

  std::size_t items_;
  SharedAtomics<pid_t> holders_;  // 0: nobody
  SharedAtomics<std::size_t> shared_;
};
