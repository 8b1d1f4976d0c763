// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <variant>
#include <vector>

// A buffer of the recording library; its bytes are kept up to a limit, its size always.
struct FakeBuffer {
  int size = 0;
  std::string bytes;
};

struct FakeCall {
  std::string name;  // the library function, with its prefix
  std::vector<std::variant<int, double, void*>> arguments;
};

// What the recording library saw and what it is to return. Reached through its export "FakeLibraryRecorder".
struct FakeRecorder {
  std::vector<FakeCall> calls;
  int instanceId = 7;
  int intResult = -41;
  double doubleResult = -2.5;
  std::wstring wideResult;
  std::string byteResult;
  int reportedLength = -1;  // returned in place of the results' own length unless -1
};

extern "C" FakeRecorder* FakeLibraryRecorder();
