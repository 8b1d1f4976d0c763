// SPDX-License-Identifier: Apache-2.0
#include "host/base/Interruption.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t gSignal = 0;
volatile std::sig_atomic_t gCount = 0;
volatile std::sig_atomic_t gEndAtSecond = 0;

void Note(int number) {
  if (gSignal == 0) gSignal = number;
  gCount = gCount + 1;
  if (gCount < 2 || gEndAtSecond == 0) return;
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void Handle(int number, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;  // poll() is interrupted all the same
  sigaction(number, &action, nullptr);
}

}  // namespace

void Interruption::Install() {
  Handle(SIGINT, Note);
  Handle(SIGTERM, Note);
  Handle(SIGPIPE, SIG_IGN);
  // Workers are waited for, whatever the caller left behind.
  Handle(SIGCHLD, SIG_DFL);
}

void Interruption::EndAtSecond() {
  gEndAtSecond = 1;
}

void Interruption::LeaveToParent() {
  Handle(SIGINT, SIG_IGN);
  Handle(SIGTERM, SIG_IGN);
}

int Interruption::Signal() {
  return gSignal;
}

int Interruption::Count() {
  return gCount;
}
