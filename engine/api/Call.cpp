// SPDX-License-Identifier: Apache-2.0
#include "engine/api/Call.h"

#include <cstdint>
#include <new>

#include "engine/api/InstanceRegistry.h"
#include "engine/base/EngineError.h"

namespace engine {

static_assert(sizeof(wchar_t) == 4, "wide strings are 32-bit units");

std::wstring_view Call::Text(void* buffer) const {
  if (buffer == nullptr) return {};
  const std::string_view bytes = instance_.Buffers().Bytes(buffer);
  if (bytes.size() % sizeof(wchar_t) != 0) throw EngineError(kErrorBadBuffer, "half a unit in a wide string");
  // The bytes come from an array made by new, which is aligned for every type.
  return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
}

void SetLastErrorFromException(Instance& instance) noexcept {
  try {
    throw;
  } catch (const EngineError& error) {
    instance.SetLastError(error.code());
    try {
      instance.SetLastError(error.code(), error.what());
    } catch (const std::bad_alloc&) {
      // The code alone.
    }
  } catch (const std::bad_alloc&) {
    instance.SetLastError(kErrorOutOfMemory);
  } catch (const std::length_error&) {
    instance.SetLastError(kErrorOutOfMemory);
  } catch (...) {
    instance.SetLastError(kErrorInternal);
  }
}

Instance* FindInstance(int id) noexcept {
  return InstanceRegistry::Get().Find(id);
}

}  // namespace engine
