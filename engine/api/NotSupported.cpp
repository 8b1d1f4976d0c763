// SPDX-License-Identifier: Apache-2.0

// A definition of every library function, which refuses the call. They are weak: a function that is implemented
// elsewhere in this folder replaces the weak one at link time.

#include <initializer_list>
#include <type_traits>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"

namespace {

void Refuse(int instanceId, const std::initializer_list<void*>& wideBuffers) {
  engine::Guarded<int>(instanceId, wideBuffers, [](engine::Call& call) -> int {
    call.Library().ForgetResult();
    throw engine::EngineError(kErrorNotSupported, "not supported");
  });
}

template <typename T>
void* WideBuffer(char kind, T argument) {
  if constexpr (std::is_pointer_v<T>) {
    return kind == 'w' ? argument : nullptr;
  } else {
    return nullptr;
  }
}

// The arguments of a refused call; `kinds` holds one letter for each.
struct Refusal {
  const char* kinds;

  template <typename... A>
  void operator()(int instanceId, A... arguments) const {
    [[maybe_unused]] const char* kind = kinds;
    // Braces: evaluated left to right.
    Refuse(instanceId, {nullptr, WideBuffer(*kind++, arguments)...});
  }
};

}  // namespace

#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) \
  __attribute__((weak)) c_result HPL##name c_parameters {                  \
    Refusal{kinds} c_names;                                                \
    return {};                                                             \
  }
#include "pdflib/LibraryFunctions.def"
