// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

namespace {

constexpr const char* kLibrary = NOOPLIBRARY_FILE;

std::wstring LibraryName() {
  return std::wstring(kLibrary, kLibrary + std::strlen(kLibrary));
}

void BareCall(benchmark::State& state) {
  void* const library = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
  auto function = reinterpret_cast<int (*)(int, int)>(dlsym(library, "HPLSelectPage"));
  benchmark::DoNotOptimize(function);
  int page = 1;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(page);
    benchmark::DoNotOptimize(function(0, page));
  }
  dlclose(library);
}
BENCHMARK(BareCall);

void ForwardedCall(benchmark::State& state) {
  HalvexPDFLibraryCPDylibCPP1311 wrapper(LibraryName());
  if (!wrapper.LibraryLoaded()) state.SkipWithError("library not loaded");
  int page = 1;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(page);
    benchmark::DoNotOptimize(wrapper.SelectPage(page));
  }
}
BENCHMARK(ForwardedCall);

// Another handle keeps the file mapped, so that both measure name look-up and not the disk.
void BareResolution(benchmark::State& state) {
  void* const kept = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
  for ([[maybe_unused]] auto _ : state) {
    void* functions[kLibraryFunctionCount];
    void* const library = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
    for (int i = 0; i < kLibraryFunctionCount; ++i) functions[i] = dlsym(library, kLibraryFunctionNames[i]);
    benchmark::DoNotOptimize(functions);
    dlclose(library);
  }
  dlclose(kept);
}
BENCHMARK(BareResolution)->Unit(benchmark::kMicrosecond);

void Construction(benchmark::State& state) {
  void* const kept = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
  const std::wstring name = LibraryName();
  for ([[maybe_unused]] auto _ : state) {
    HalvexPDFLibraryCPDylibCPP1311 wrapper(name);
    benchmark::DoNotOptimize(wrapper.LibraryLoaded());
  }
  dlclose(kept);
}
BENCHMARK(Construction)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
