// SPDX-License-Identifier: Apache-2.0
#include "fuzz/OwnProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>

namespace {

constexpr rlim_t kMaxAddresses = rlim_t{2} << 30;

void Limit(int resource, rlim_t soft, rlim_t hard) {
  const rlimit limit{soft, hard};
  setrlimit(resource, &limit);
}

[[noreturn]] void Work(const std::function<std::string()>& work, int seconds, int pipe) {
  Limit(RLIMIT_CPU, static_cast<rlim_t>(seconds), static_cast<rlim_t>(seconds) + 1);
  Limit(RLIMIT_AS, kMaxAddresses, kMaxAddresses);
  Limit(RLIMIT_CORE, 0, 0);
  std::string result;
  try {
    result = work();
  } catch (...) {
    _exit(70);
  }
  for (std::size_t done = 0; done < result.size();) {
    const ssize_t written = write(pipe, result.data() + done, result.size() - done);
    if (written <= 0) _exit(71);
    done += static_cast<std::size_t>(written);
  }
  _exit(0);
}

// Everything the process writes until it ends; false when the time is over before.
bool ReadAll(int pipe, std::chrono::seconds limit, std::string& result) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  char block[65536];
  while (true) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
    pollfd waited{pipe, POLLIN, 0};
    if (left <= 0 || poll(&waited, 1, static_cast<int>(left)) == 0) return false;
    const ssize_t got = read(pipe, block, sizeof block);
    if (got <= 0) return true;
    result.append(block, static_cast<std::size_t>(got));
  }
}

std::string HowItEnded(int status, bool inTime) {
  if (!inTime) return "took too long";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU) return "took too long";
  if (WIFSIGNALED(status)) return "crashed: signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return "crashed: exit code " + std::to_string(WEXITSTATUS(status));
  return {};
}

}  // namespace

Outcome RunInOwnProcess(const std::function<std::string()>& work, int seconds) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    close(ends[0]);
    Work(work, seconds, ends[1]);
  }
  close(ends[1]);
  std::string result;
  const bool inTime = ReadAll(ends[0], std::chrono::seconds(4 * seconds), result);
  close(ends[0]);
  if (!inTime) kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  Outcome outcome{std::nullopt, HowItEnded(status, inTime)};
  if (outcome.end.empty()) outcome.result = std::move(result);
  return outcome;
}
