// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

// What the system refuses or does wrong in a test. A program with FailingSystem.cpp calls the functions there in place
// of the C library's.
struct Failing {
  bool unnamedFiles = false;                          // O_TMPFILE
  bool holes = false;                                 // SEEK_DATA and SEEK_HOLE
  bool waiting = false;                               // usleep: waiting takes no time
  int copy = 0;                                       // the error of copy_file_range
  int copiesBefore = 0;                               // calls of it that copy a part before the error
  bool copiesLie = false;                             // copy_file_range copies nothing and reports success
  bool writesLie = false;                             // pwrite changes a byte and reports success
  int exchange = 0;                                   // the error of renameat2
  std::vector<std::function<void()>> beforeExchange;  // what happens before its first call, the second ...
};

extern Failing failing;
