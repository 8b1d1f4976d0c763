// SPDX-License-Identifier: Apache-2.0
#include "engine/document/BackendModule.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>

#include "engine/base/EngineError.h"

namespace engine {

namespace {

constexpr char kFileName[] = "HalvexEngineBackend.so";
constexpr char kEntryPoint[] = "HalvexEngineBackend";

// The path with all links followed; empty when it leads nowhere.
std::string Resolve(const std::string& path) {
  char* const resolved = realpath(path.c_str(), nullptr);
  std::string result = resolved != nullptr ? resolved : "";
  std::free(resolved);
  return result;
}

std::string FindLibraryPath() {
  Dl_info info = {};
  if (dladdr(reinterpret_cast<const void*>(&BackendModule::Get), &info) == 0 || info.dli_fname == nullptr) return {};
  return info.dli_fname[0] == '/' ? info.dli_fname : Resolve(info.dli_fname);
}

// As it was at the first call.
const std::string& LibraryPath() {
  static const std::string path = FindLibraryPath();
  return path;
}

Backend& Load() {
  const std::string library = Resolve(LibraryPath());
  const std::string path = library.substr(0, library.rfind('/') + 1) + kFileName;
  // The module stays until the process ends: what it links keeps state that is costly to build again.
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (module == nullptr) throw EngineError(kErrorBackendMissing, dlerror());
  const auto entry = reinterpret_cast<decltype(&HalvexEngineBackend)>(dlsym(module, kEntryPoint));
  if (entry == nullptr) throw EngineError(kErrorBackendMissing, path + " is not the backend of this library");
  return *entry();
}

}  // namespace

Backend& BackendModule::Get() {
  static Backend& backend = Load();
  return backend;
}

void BackendModule::NoteLibraryPath() {
  LibraryPath();
}

}  // namespace engine
