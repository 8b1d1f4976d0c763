// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

// SIGINT (Ctrl-C) and SIGTERM. The first one lets a run stop after the files in hand with a true report, and ends every
// wait for input. The second one ends the program at once.
namespace Interruption {

// Catches SIGINT and SIGTERM from now on and ignores SIGPIPE.
void Install();
// In a process that works alone: a second signal ends it, also in the middle of a file.
void EndAtSecond();
// In a worker process: only the main process decides when to stop. The worker is killed when the main process dies.
void LeaveToParent(int parent);
// The signal that came first, or 0.
int Signal();
// The number of signals so far. After the second one nothing is waited for; if the program has not ended two seconds
// later, it is killed.
int Count();
// Throws CommandError with the signal's exit code when one came. For the time before any document is touched.
void Check();

// Waits until the descriptor is ready for poll()'s `events`, or broken. After a first signal it waits `grace` at most,
// after a second one not at all. Returns false when the descriptor is still not ready.
bool WaitFor(int descriptor, short events, std::chrono::milliseconds grace = {});
// Waits for that long, or until a signal comes.
void Sleep(std::chrono::milliseconds time);

}  // namespace Interruption
