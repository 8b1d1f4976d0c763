// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <list>
#include <string>

#include "host/run/Frames.h"
#include "host/run/RunPlan.h"
#include "host/run/RunReporter.h"
#include "host/run/Worker.h"

// Runs a plan in worker processes, forked from this one, so that they start with the plug-ins and settings loaded. Each
// has several files waiting for it; one that dies costs the file it held, the others go to another worker.
class WorkerPool {
 public:
  // `timeout` 0 means none: a worker that holds a file longer is killed, and the file failed. Keeps references.
  WorkerPool(const WorkerSettings& settings, std::chrono::seconds timeout, RunReporter& reporter);
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Forks so many workers and runs the plan in them. Returns when all files are settled, or after an interruption when
  // no file is in hand any more. Throws CommandError(kExitNotLoaded) when no worker can be kept alive, or a worker
  // cannot load the PDF library.
  void Run(RunPlan& plan, std::size_t workers);

 private:
  using Clock = std::chrono::steady_clock;
  struct Member {
    pid_t pid;
    int jobs;      // -1 once closed
    int outcomes;  // -1 once the worker is gone
    bool ready = false;
    bool timedOut = false;
    std::string unsent = {};
    Frames::Reader reader = {};
    std::deque<Job> outstanding = {};
    Clock::time_point holdsSince = {};
  };

  void Fork();
  void HandOut(RunPlan& plan);
  bool NextJob(RunPlan& plan, Job& job);
  Clock::duration PerFile() const;
  std::size_t Depth(const RunPlan& plan) const;
  void Send(Member& member);
  void Wait();
  void Receive(Member& member);
  void Bury(Member& member);
  void KillOverdue();
  void Stop();
  bool AllSettled() const;

  const WorkerSettings& settings_;
  std::chrono::seconds timeout_;
  RunReporter& reporter_;
  std::atomic<bool>* stop_;  // in memory shared with the workers
  std::list<Member> members_;
  std::size_t wanted_ = 0;
  std::deque<Job> returned_;
  std::size_t received_ = 0;
  Clock::duration spent_{};  // by workers, on what was received
};
