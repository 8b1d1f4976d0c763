// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <dlfcn.h>

#include <string>
#include <utility>
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

// The recording library's calls and the results that it returns; its export "FakeLibraryRecorder" returns it.
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

// Keeps a recording library open, with a fresh record that survives the wrapper under test.
class OpenFakeLibrary {
 public:
  explicit OpenFakeLibrary(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    recorder_ = reinterpret_cast<decltype(&FakeLibraryRecorder)>(Symbol("FakeLibraryRecorder"))();
    *recorder_ = FakeRecorder();
  }
  ~OpenFakeLibrary() { dlclose(handle_); }
  OpenFakeLibrary(const OpenFakeLibrary&) = delete;
  OpenFakeLibrary& operator=(const OpenFakeLibrary&) = delete;

  FakeRecorder* operator->() const { return recorder_; }
  void* Symbol(const std::string& name) const { return dlsym(handle_, name.c_str()); }
  // Calls recorded since the last Take().
  std::vector<FakeCall> Take() const { return std::exchange(recorder_->calls, {}); }

 private:
  void* handle_;
  FakeRecorder* recorder_;
};
