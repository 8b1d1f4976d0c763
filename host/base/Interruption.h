// SPDX-License-Identifier: Apache-2.0
#pragma once

// Ctrl-C and the polite termination signal: the run stops after the files in hand, its report stays true.
namespace Interruption {

// Catches SIGINT and SIGTERM from now on and ignores SIGPIPE.
void Install();
// In a process that works alone: a second signal ends it, whatever it holds.
void EndAtSecond();
// In a worker process: the main process alone decides when to stop.
void LeaveToParent();
// The signal that came first, or 0.
int Signal();
// How many came; a second one means that the files in hand are not waited for.
int Count();

}  // namespace Interruption
