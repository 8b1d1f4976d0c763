// SPDX-License-Identifier: Apache-2.0
// A PDF library that records every call; made from the function table, so it has every function.
#include "tests/pdflib/FakeLibrary.h"

#include <type_traits>

#define HPL_EXPORT __attribute__((visibility("default")))
#include "pdflib/LibraryExports.h"

namespace {

constexpr int kKeptBytes = 1 << 20;

FakeRecorder gRecorder;

template <typename... A>
void Record(const char* name, A... arguments) {
  gRecorder.calls.push_back({name, {arguments...}});
}

// A name that is called with a function's parenthesised argument list.
struct Recording {
  const char* name;
  template <typename... A>
  void operator()(A... arguments) const {
    Record(name, arguments...);
  }
};

template <typename R>
R Answer() {
  if constexpr (std::is_same_v<R, int>) return gRecorder.intResult;
  if constexpr (std::is_same_v<R, double>) return gRecorder.doubleResult;
  if constexpr (std::is_same_v<R, wchar_t*>) return gRecorder.wideResult.data();
  if constexpr (std::is_same_v<R, char*>) return gRecorder.byteResult.data();
}

int Length(std::size_t own) {
  return gRecorder.reportedLength == -1 ? static_cast<int>(own) : gRecorder.reportedLength;
}

}  // namespace

extern "C" {

HPL_EXPORT FakeRecorder* FakeLibraryRecorder() {
  return &gRecorder;
}

int HPLCreateLibrary() {
  Record("HPLCreateLibrary");
  return gRecorder.instanceId;
}

int HPLReleaseLibrary(int instance) {
  Record("HPLReleaseLibrary", instance);
  return 0;
}

void* HPLCreateBuffer(int instance, int size) {
  auto* buffer = new FakeBuffer{size, {}};
  Record("HPLCreateBuffer", instance, size, static_cast<void*>(buffer));
  return buffer;
}

int HPLAddToBuffer(int instance, void* buffer, const void* source, int size) {
  Record("HPLAddToBuffer", instance, buffer, size);
  if (size <= kKeptBytes) {
    static_cast<FakeBuffer*>(buffer)->bytes.append(static_cast<const char*>(source), static_cast<std::size_t>(size));
  }
  return 0;
}

int HPLReleaseBuffer(int instance, void* buffer) {
  Record("HPLReleaseBuffer", instance, buffer);
  return 0;
}

int HPLStringResultLength(int instance) {
  Record("HPLStringResultLength", instance);
  return Length(gRecorder.wideResult.size());
}

int HPLAnsiStringResultLength(int instance) {
  Record("HPLAnsiStringResultLength", instance);
  return Length(gRecorder.byteResult.size());
}

#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) \
  c_result HPL##name c_parameters {                                        \
    Recording{"HPL" #name} c_names;                                        \
    return Answer<c_result>();                                             \
  }
#include "pdflib/LibraryFunctions.def"
}
