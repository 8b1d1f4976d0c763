// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the program's exit code says. An interrupted run ends with kExitSignalBase + the signal's number, as a shell
// reports it.
enum ExitCode : int {
  kExitDone = 0,          // all done; `edit`: the dialog was accepted
  kExitSomeFailed = 1,    // some documents failed, or a result could not be written; `edit`: the dialog was cancelled
  kExitUsage = 2,         // the command line is wrong; nothing was touched
  kExitNotLoaded = 3,     // a plug-in, an action list or the PDF library could not be loaded; nothing was touched
  kExitSignalBase = 128,  // + SIGINT (130) or SIGTERM (143)
};
