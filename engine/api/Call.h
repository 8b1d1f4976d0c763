// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "engine/api/Instance.h"

namespace engine {

// One call of an exported function, inside Guarded(): the instance and the call's wide-string buffers, which the
// destructor releases.
class Call {
 public:
  Call(Instance& instance, const std::initializer_list<void*>& wideBuffers)
      : instance_(instance), wideBuffers_(wideBuffers) {}
  ~Call() {
    for (void* const buffer : wideBuffers_) instance_.Buffers().Release(buffer);
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  Instance& Library() { return instance_; }
  // The selected document; throws EngineError kErrorNoDocument.
  Document& Selected() { return instance_.Selected(); }

  // The text in a wide-string buffer, empty for null. Throws EngineError as BufferPool::Bytes, and kErrorBadBuffer for
  // a size that is not a multiple of a unit.
  std::wstring_view Text(void* buffer) const;
  // The same for a byte-string buffer; null is an unknown buffer.
  std::string_view Bytes(void* buffer) const { return instance_.Buffers().Bytes(buffer); }

 private:
  Instance& instance_;
  const std::initializer_list<void*>& wideBuffers_;
};

// Makes the exception that is being handled the last error.
void SetLastErrorFromException(Instance& instance) noexcept;

// The instance, or null.
Instance* FindInstance(int id) noexcept;

// The exception boundary, through which every exported function enters the engine: looks the instance up, runs
// `body(call)`, stores its string result, sets the last error and frees the wide-string buffers. An unknown instance
// and every exception return R(). `body` returns the function's result, a string instead of a pointer.
template <typename R, typename Body>
R Guarded(int instanceId, const std::initializer_list<void*>& wideBuffers, Body&& body) noexcept {
  Instance* const instance = FindInstance(instanceId);
  if (instance == nullptr) return R();
  constexpr bool kString = std::is_pointer_v<R>;
  try {
    Call call(*instance, wideBuffers);
    R result = R();
    if constexpr (kString) {
      result = instance->Keep(body(call));
    } else {
      result = body(call);
    }
    instance->SetLastError(kErrorNone);
    return result;
  } catch (...) {
    SetLastErrorFromException(*instance);
    if (kString) instance->ForgetResult();
    return R();
  }
}

template <typename R, typename Body>
R Guarded(int instanceId, Body&& body) noexcept {
  return Guarded<R>(instanceId, {}, std::forward<Body>(body));
}

}  // namespace engine
