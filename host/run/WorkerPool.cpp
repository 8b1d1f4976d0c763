// SPDX-License-Identifier: Apache-2.0
#include "host/run/WorkerPool.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <thread>
#include <utility>

#include "host/base/CommandError.h"
#include "host/base/Interruption.h"

namespace {

// A worker has about this much work waiting: enough to hide the way to the main process and back, little enough that
// the workers end together.
constexpr std::chrono::microseconds kWaitingWork(5000);
constexpr std::size_t kMostWaiting = 256;
constexpr std::size_t kFirstWaiting = 4;
// While every worker has work for longer than this, outcomes are collected in batches: to be woken for each one would
// take the workers' time where all cores are theirs.
constexpr std::chrono::microseconds kLeastBatch(100);
constexpr std::chrono::microseconds kMostBatch(2000);
constexpr int kPollMilliseconds = 500;

std::string HowItEnded(int status) {
  if (WIFSIGNALED(status)) return "crashed: signal " + std::to_string(WTERMSIG(status));
  return "crashed: exit code " + std::to_string(WEXITSTATUS(status));
}

void CloseEnd(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

// Waits for a worker that ends or has ended; how it ended.
int Reap(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

CommandError NotLoaded(const QString& what) {
  return CommandError(kExitNotLoaded, what);
}

}  // namespace

WorkerPool::WorkerPool(const WorkerSettings& settings, std::chrono::seconds timeout, RunReporter& reporter)
    : settings_(settings), timeout_(timeout), reporter_(reporter) {
  void* const page = mmap(nullptr, sizeof(*stop_), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) throw std::bad_alloc();
  stop_ = new (page) std::atomic<bool>(false);
}

WorkerPool::~WorkerPool() {
  for (Member& member : members_) {
    CloseEnd(member.jobs);
    CloseEnd(member.outcomes);
  }
  // Idle workers end with their pipes; one that still holds a file, after an error here, could hang on it.
  for (const Member& member : members_) {
    if (member.pid <= 0) continue;
    if (!member.outstanding.empty()) kill(member.pid, SIGKILL);
    Reap(member.pid);
  }
  munmap(stop_, sizeof(*stop_));
}

void WorkerPool::Fork() {
  int jobs[2];
  int outcomes[2];
  if (pipe2(jobs, O_CLOEXEC) != 0) throw NotLoaded(QStringLiteral("Cannot make a pipe to a worker process."));
  if (pipe2(outcomes, O_CLOEXEC) != 0) {
    close(jobs[0]);
    close(jobs[1]);
    throw NotLoaded(QStringLiteral("Cannot make a pipe from a worker process."));
  }
  const pid_t pid = fork();
  if (pid == 0) {
    Interruption::LeaveToParent();
    close(jobs[1]);
    close(outcomes[0]);
    // A worker that kept another's ends open would keep it from seeing that the main process is gone.
    for (Member& member : members_) {
      CloseEnd(member.jobs);
      CloseEnd(member.outcomes);
    }
    // Nothing of the main process is to be run down or flushed a second time.
    _exit(Worker::Run(settings_, jobs[0], outcomes[1], *stop_));
  }
  close(jobs[0]);
  close(outcomes[1]);
  if (pid < 0) {
    close(jobs[1]);
    close(outcomes[0]);
    throw NotLoaded(QStringLiteral("Cannot start a worker process: %1").arg(QString::fromLocal8Bit(strerror(errno))));
  }
  fcntl(jobs[1], F_SETFL, O_NONBLOCK);
  members_.push_back(Member{pid, jobs[1], outcomes[0]});
}

void WorkerPool::Run(RunPlan& plan, std::size_t workers) {
  wanted_ = std::max<std::size_t>(workers, 1);
  for (std::size_t i = 0; i < wanted_; ++i) Fork();
  for (;;) {
    if (Interruption::Signal() != 0) Stop();
    HandOut(plan);
    reporter_.Flush();
    if (AllSettled() && (*stop_ || plan.Remaining() == 0)) return;
    Wait();
    KillOverdue();
  }
}

bool WorkerPool::AllSettled() const {
  return returned_.empty() &&
         std::all_of(members_.begin(), members_.end(), [](const Member& member) { return member.outstanding.empty(); });
}

void WorkerPool::HandOut(RunPlan& plan) {
  if (*stop_) return;
  const std::size_t depth = Depth(plan);
  for (Member& member : members_) {
    // Refilling at half saves calls.
    if (member.outstanding.size() > depth / 2) continue;
    Job job;
    while (member.outstanding.size() < depth && NextJob(plan, job)) {
      if (member.outstanding.empty()) member.holdsSince = Clock::now();
      Frames::Append(member.unsent, {job.file, job.output});
      member.outstanding.push_back(std::move(job));
    }
    Send(member);
  }
}

// What a file has cost a worker so far; never 0.
WorkerPool::Clock::duration WorkerPool::PerFile() const {
  if (received_ == 0) return kWaitingWork / kFirstWaiting;
  return std::max<Clock::duration>(spent_ / received_, std::chrono::microseconds(1));
}

std::size_t WorkerPool::Depth(const RunPlan& plan) const {
  const auto depth = std::clamp<std::size_t>(static_cast<std::size_t>(kWaitingWork / PerFile()), 1, kMostWaiting);
  const std::size_t fairShare = (plan.Remaining() + returned_.size()) / (2 * wanted_) + 1;
  return std::min(depth, fairShare);
}

bool WorkerPool::NextJob(RunPlan& plan, Job& job) {
  if (!returned_.empty()) {
    job = std::move(returned_.front());
    returned_.pop_front();
    return true;
  }
  while (std::optional<RunPlan::Step> step = plan.Next()) {
    if (step->doneBefore) {
      reporter_.CountDoneBefore();
    } else if (step->settled) {
      reporter_.Take(*step->settled);
    } else {
      job = std::move(step->job);
      return true;
    }
  }
  return false;
}

void WorkerPool::Send(Member& member) {
  while (!member.unsent.empty()) {
    const ssize_t count = write(member.jobs, member.unsent.data(), member.unsent.size());
    if (count < 0 && errno == EINTR) continue;
    // A full pipe is waited for; the end of a dead worker is seen on its other pipe.
    if (count < 0) return;
    member.unsent.erase(0, static_cast<std::size_t>(count));
  }
}

void WorkerPool::Wait() {
  std::size_t least = kMostWaiting;
  for (const Member& member : members_) least = std::min(least, member.outstanding.size());
  const auto batch = std::min<Clock::duration>(PerFile() * least / 2, kMostBatch);
  if (received_ > 0 && batch > kLeastBatch) std::this_thread::sleep_for(batch);
  std::vector<pollfd> polled;
  for (const Member& member : members_) {
    polled.push_back({member.outcomes, POLLIN, 0});
    polled.push_back({member.unsent.empty() ? -1 : member.jobs, POLLOUT, 0});
  }
  if (poll(polled.data(), polled.size(), kPollMilliseconds) <= 0) return;
  std::size_t i = 0;
  std::size_t gone = 0;
  for (auto member = members_.begin(); member != members_.end(); i += 2) {
    if (polled[i + 1].revents != 0) Send(*member);
    if (polled[i].revents != 0) Receive(*member);
    const bool isGone = member->outcomes < 0;
    gone += isGone ? 1 : 0;
    member = isGone ? members_.erase(member) : std::next(member);
  }
  if (*stop_) return;
  for (; gone > 0; --gone) {
    try {
      Fork();
    } catch (const CommandError&) {
      if (members_.empty()) throw;
    }
  }
}

void WorkerPool::Receive(Member& member) {
  const bool open = member.reader.Fill(member.outcomes);
  Frames::Fields fields;
  while (member.reader.Next(fields)) {
    if (!member.ready) {
      member.ready = true;
      continue;
    }
    OutcomeFacts facts;
    std::memcpy(&facts, fields[0].data(), sizeof facts);
    reporter_.Take(
        Outcome{member.outstanding.front().file, facts.status, facts.unchanged, fields[1], fields[2], fields[3]});
    member.outstanding.pop_front();
    member.holdsSince = Clock::now();
    ++received_;
    spent_ += std::chrono::microseconds(facts.microseconds);
  }
  if (!open) Bury(member);
}

// A worker that is gone: the file it held is lost, the others are handed to another one.
void WorkerPool::Bury(Member& member) {
  CloseEnd(member.jobs);
  CloseEnd(member.outcomes);
  const int status = Reap(std::exchange(member.pid, 0));
  if (!member.ready && WIFEXITED(status) && WEXITSTATUS(status) == kExitNotLoaded) {
    throw NotLoaded(QStringLiteral("The PDF library cannot be loaded: it is missing or incomplete."));
  }
  const bool stoppedAsTold = *stop_ && WIFEXITED(status) && WEXITSTATUS(status) == kExitDone;
  if (!member.outstanding.empty() && !stoppedAsTold) {
    FileRecord record;
    record.file = member.outstanding.front().file;
    record.output = member.outstanding.front().output;
    record.status = FileRecord::Status::kFailed;
    record.reason = member.timedOut             ? "took longer than the time limit"
                    : Interruption::Count() > 1 ? "interrupted"
                                                : HowItEnded(status);
    reporter_.Take(record);
    member.outstanding.pop_front();
  }
  if (!*stop_) std::move(member.outstanding.begin(), member.outstanding.end(), std::back_inserter(returned_));
  member.outstanding.clear();
}

void WorkerPool::KillOverdue() {
  const bool impatient = Interruption::Count() > 1;
  if (timeout_.count() == 0 && !impatient) return;
  const Clock::time_point now = Clock::now();
  for (Member& member : members_) {
    const bool overdue = timeout_.count() > 0 && now - member.holdsSince > timeout_;
    if (member.outstanding.empty() || !(overdue || impatient)) continue;
    member.timedOut = overdue;
    kill(member.pid, SIGKILL);
  }
}

// Workers see the flag before their next file; those that wait for one see the end of their pipe.
void WorkerPool::Stop() {
  if (*stop_) return;
  *stop_ = true;
  returned_.clear();
  for (Member& member : members_) {
    member.unsent.clear();
    CloseEnd(member.jobs);
  }
}
