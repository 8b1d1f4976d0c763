// SPDX-License-Identifier: Apache-2.0
#include "host/base/WindowSystem.h"

#include <dlfcn.h>

#include "host/base/CommandError.h"

namespace {

WindowSystem& Load() {
  // Found by the program's run path, as the PDF library is.
  void* const module = dlopen("VorlaneRunWidgets.so", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const entry = module != nullptr ? dlsym(module, "VorlaneRunWidgets") : nullptr;
  if (entry != nullptr) return *reinterpret_cast<decltype(&VorlaneRunWidgets)>(entry)();
  throw CommandError(kExitNotLoaded,
                     QStringLiteral("The part of vorlane-run for windows and help pages cannot be loaded: %1")
                         .arg(QString::fromLocal8Bit(dlerror())));
}

}  // namespace

WindowSystem& WindowSystem::Get() {
  static WindowSystem& system = Load();
  return system;
}
