// SPDX-License-Identifier: Apache-2.0
#include "host/base/Interruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <QString>

#include "host/base/CommandError.h"

namespace {

constexpr unsigned kSecondsToEnd = 2;

volatile std::sig_atomic_t gSignal = 0;
volatile std::sig_atomic_t gCount = 0;
volatile std::sig_atomic_t gEndAtSecond = 0;
// Stays readable after a signal, so that no wait can miss it.
int gWakeUp = -1;

void EndBy(int number) {
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void Note(int number) {
  const int error = errno;
  if (gSignal == 0) gSignal = number;
  gCount = gCount + 1;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(gWakeUp, &one, sizeof one);
  errno = error;
  if (gCount < 2) return;
  if (gEndAtSecond != 0) EndBy(number);
  alarm(kSecondsToEnd);
}

void EndByForce(int) {
  EndBy(gSignal);
}

void Handle(int number, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;  // poll() is interrupted all the same
  sigaction(number, &action, nullptr);
}

}  // namespace

void Interruption::Install() {
  gWakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  Handle(SIGINT, Note);
  Handle(SIGTERM, Note);
  Handle(SIGALRM, EndByForce);
  Handle(SIGPIPE, SIG_IGN);
  // Workers are waited for, also where the caller ignores the end of children.
  Handle(SIGCHLD, SIG_DFL);
}

void Interruption::EndAtSecond() {
  gEndAtSecond = 1;
}

void Interruption::LeaveToParent(int parent) {
  Handle(SIGINT, SIG_IGN);
  Handle(SIGTERM, SIG_IGN);
  Handle(SIGALRM, SIG_DFL);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) std::raise(SIGKILL);
}

int Interruption::Signal() {
  return gSignal;
}

int Interruption::Count() {
  return gCount;
}

void Interruption::Check() {
  if (gSignal == 0) return;
  throw CommandError(static_cast<ExitCode>(kExitSignalBase + gSignal),
                     QStringLiteral("Interrupted before any document was touched."));
}

bool Interruption::WaitFor(int descriptor, short events, std::chrono::milliseconds grace) {
  for (;;) {
    const bool stopping = gSignal != 0;
    const auto patience = gCount > 1 ? 0 : static_cast<int>(grace.count());
    pollfd polled[] = {{descriptor, events, 0}, {gWakeUp, POLLIN, 0}};
    const int ready = poll(polled, stopping ? 1 : 2, stopping ? patience : -1);
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || polled[0].revents != 0) return true;
    if (stopping) return false;
  }
}

void Interruption::Sleep(std::chrono::milliseconds time) {
  pollfd wakeUp = {gWakeUp, POLLIN, 0};
  poll(&wakeUp, 1, static_cast<int>(time.count()));
}
