// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <list>
#include <string>
#include <vector>

#include "host/base/Descriptor.h"
#include "host/run/JobBoard.h"
#include "host/run/RecordFraming.h"
#include "host/run/RunningTime.h"
#include "host/run/WorkerTask.h"

// One worker process, as its parent sees it.
class WorkerProcess {
 public:
  using Duration = RunningTime::Clock::duration;

  // Forks it; it works on the board's items until there are none. It lets go of its siblings, whose results are not for
  // it. Throws CommandError(kExitNotLoaded) when it cannot be started.
  WorkerProcess(WorkerTask& task, JobBoard& board, std::list<WorkerProcess>& siblings);
  // Ends it if need be, and waits for its end, unless it was abandoned.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  pid_t Id() const { return id_; }
  // Where its results come from.
  int Results() const { return results_.Get(); }

  // Takes the results that are there: calls `take(item, bytes)` for each. False when the worker has ended. Throws
  // CommandError(kExitNotLoaded) when the worker could not begin its task.
  template <typename Take>
  bool Receive(Take take) {
    const bool open = reader_.Fill(results_.Get());
    RecordFraming::Fields fields;
    while (reader_.Next(fields)) take(ItemOf(fields), fields[1]);
    return open;
  }

  // Adds running time to the age of the item in hand, or of the order to kill. Time in which the worker is stopped does
  // not count. Returns the age.
  Duration Age(Duration passed);
  // Kills it. Named temporary files that it is writing are removed when it has ended.
  void Kill(const std::string& why);
  bool Killed() const { return !whyKilled_.empty(); }
  // Stops waiting for it: a device keeps even the system from ending it.
  void Abandon() { abandoned_ = true; }
  // Waits for its end. Returns why it was killed, or how it ended, as one clause.
  std::string Reap();

 private:
  struct TemporaryFile {
    std::string name;
    dev_t device;
    ino_t inode;
  };

  [[noreturn]] static void Work(WorkerTask& task, JobBoard& board, std::atomic<std::size_t>& inHand, int results);
  static std::size_t ItemOf(const RecordFraming::Fields& fields);
  std::vector<TemporaryFile> TemporaryFiles() const;
  bool IsStopped() const;

  pid_t id_ = 0;
  Descriptor results_;
  RecordFraming::Reader reader_;
  SharedAtomics<std::size_t> inHand_;  // the item's number + 1, 0 between items
  std::size_t aged_ = 0;               // the item that held_ is about, likewise
  Duration held_{};
  std::string whyKilled_;
  bool abandoned_ = false;
  std::vector<TemporaryFile> temporaryFiles_;
};
