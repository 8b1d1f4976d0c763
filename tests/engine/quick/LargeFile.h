// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// A PDF file of many pages, made for tests and benchmarks of what it costs to open one.
struct LargeFile {
  enum class Kind {
    kTable,          // objects with a cross-reference table
    kStream,         // objects with a cross-reference stream
    kObjectStreams,  // a cross-reference stream, the objects in object streams of a hundred
  };

  // The catalog is the first object or the last one.
  static std::string Make(Kind kind, int pages, bool catalogLast);
};
