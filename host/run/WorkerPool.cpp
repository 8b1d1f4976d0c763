// SPDX-License-Identifier: Apache-2.0
#include "host/run/WorkerPool.h"

#include <poll.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Counted.h"
#include "host/base/Interruption.h"

namespace {

// While every worker has so many items ahead, results are collected in batches: to be woken for each one would take the
// workers' time where all cores are theirs.
constexpr std::size_t kManyItems = 32;
constexpr std::chrono::milliseconds kBatch(1);
// The system ends a killed process sooner than this, unless a device keeps it from doing so.
constexpr std::chrono::seconds kLongestEnd(5);
constexpr int kMostLostStarts = 5;

}  // namespace

WorkerPool::WorkerPool(WorkerTask& task, std::size_t items, std::size_t workers, std::chrono::seconds timeLimit)
    : task_(task),
      wanted_(std::clamp<std::size_t>(workers, 1, std::max<std::size_t>(items, 1))),
      timeLimit_(timeLimit),
      board_(items),
      unsettled_(items),
      time_(RunningTime::Clock::now()) {}

void WorkerPool::Run() {
  while (unsettled_ > 0) {
    if (Interruption::Signal() != 0 && !board_.Stopped()) {
      board_.Stop();
      AnnounceStop();
    }
    if (board_.Stopped() && workers_.empty()) return;
    if (!board_.Stopped()) Fork();
    Wait();
    EndOverdue();
    task_.Flush();
  }
}

void WorkerPool::AnnounceStop() const {
  std::size_t held = 0;
  for (const WorkerProcess& worker : workers_) held += board_.HeldBy(worker.Id()).size();
  if (held == 0) return;
  Console::Error(QStringLiteral("stopping, finishing ") + QString::fromStdString(Counted(held, "file")));
}

void WorkerPool::Fork() {
  if (workers_.empty() && board_.Left() == 0) board_.Rewind();
  while (workers_.size() < wanted_ && board_.Left() > 0) {
    try {
      workers_.emplace_back(task_, board_, workers_);
    } catch (const CommandError&) {
      if (workers_.empty()) throw;
      return;
    }
  }
}

void WorkerPool::Wait() {
  if (board_.Left() > kManyItems * wanted_) std::this_thread::sleep_for(kBatch);
  std::vector<pollfd> polled;
  for (const WorkerProcess& worker : workers_) polled.push_back({worker.Results(), POLLIN, 0});
  if (poll(polled.data(), polled.size(), static_cast<int>(RunningTime::kTick.count())) <= 0) return;
  auto next = workers_.begin();
  for (const pollfd& one : polled) {
    const auto worker = next++;
    if (one.revents == 0) continue;
    const bool open = worker->Receive([&](std::size_t item, std::string_view result) {
      lostStarts_ = 0;
      if (!board_.Settle(item)) return;
      --unsettled_;
      task_.Take(item, result);
    });
    if (!open) Bury(worker);
  }
}

// A worker has ended: what it held is lost.
void WorkerPool::Bury(Workers::iterator worker) {
  const std::vector<std::size_t> held = board_.HeldBy(worker->Id());
  const std::string end = worker->Reap();
  workers_.erase(worker);
  Lose(held, end);
  if (!held.empty() || board_.Stopped() || board_.Left() == 0) return;
  if (++lostStarts_ < kMostLostStarts) return;
  throw CommandError(
      kExitNotLoaded,
      QStringLiteral("Worker processes end before their first file: %1.").arg(QString::fromStdString(end)));
}

void WorkerPool::Lose(const std::vector<std::size_t>& items, const std::string& reason) {
  for (const std::size_t item : items) {
    board_.Settle(item);
    --unsettled_;
    task_.Lose(item, reason);
  }
}

void WorkerPool::EndOverdue() {
  const auto passed = time_.Advance(RunningTime::Clock::now());
  const bool impatient = Interruption::Count() > 1;
  if (passed.count() == 0 && !impatient) return;
  for (auto next = workers_.begin(); next != workers_.end();) {
    const auto worker = next++;
    const auto age = worker->Age(passed);
    if (worker->Killed()) {
      if (age < kLongestEnd) continue;
      worker->Abandon();
      Lose(board_.HeldBy(worker->Id()), "hangs in the system and cannot be ended");
      workers_.erase(worker);
    } else if (impatient) {
      worker->Kill("interrupted");
    } else if (timeLimit_.count() > 0 && age > timeLimit_) {
      worker->Kill("took longer than the time limit of " + std::to_string(timeLimit_.count()) + " s");
    }
  }
}
