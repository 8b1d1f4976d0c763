// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <string>
#include <vector>

#include "host/run/JobBoard.h"
#include "host/run/RunningTime.h"
#include "host/run/WorkerProcess.h"
#include "host/run/WorkerTask.h"

// Works on numbered items in worker processes, forked from this one, so that they start with all that is loaded here.
// A worker that dies costs the item it held; another one takes its place.
class WorkerPool {
 public:
  // An item that takes longer than `timeLimit` of running time is lost; 0 means no limit. Keeps a reference to the
  // task.
  WorkerPool(WorkerTask& task, std::size_t items, std::size_t workers, std::chrono::seconds timeLimit);

  // Returns when all items are taken or lost, or after a stop signal when no item is in hand any more. Throws
  // CommandError(kExitNotLoaded) when no worker can be kept alive or the task cannot begin.
  void Run();

 private:
  using Workers = std::list<WorkerProcess>;

  void AnnounceStop() const;
  void Fork();
  void Wait();
  void Bury(Workers::iterator worker);
  void Lose(const std::vector<std::size_t>& items, const std::string& reason);
  void EndOverdue();

  WorkerTask& task_;
  std::size_t wanted_;
  std::chrono::seconds timeLimit_;
  JobBoard board_;
  std::size_t unsettled_;
  Workers workers_;
  RunningTime time_;
  int lostStarts_ = 0;  // workers in a row that ended before their first item
};
