// SPDX-License-Identifier: Apache-2.0

// The functions that a wrapper calls before and after every other one. They set the last error only when they fail:
// otherwise it is that of the call between them.

#include <new>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/api/InstanceRegistry.h"
#include "engine/document/BackendModule.h"

using engine::FindInstance;
using engine::Instance;
using engine::InstanceRegistry;

int HPLCreateLibrary() {
  try {
    engine::BackendModule::NoteLibraryPath();
    return InstanceRegistry::Get().Create();
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int HPLReleaseLibrary(int instance) {
  return InstanceRegistry::Get().Release(instance) ? 1 : 0;
}

void* HPLCreateBuffer(int instance, int size) {
  Instance* const found = FindInstance(instance);
  if (found == nullptr) return nullptr;
  LibraryErrorCode error = kErrorNone;
  void* const buffer = found->Buffers().Create(size, error);
  if (error != kErrorNone) found->SetLastError(error);
  return buffer;
}

int HPLAddToBuffer(int instance, void* buffer, const void* source, int size) {
  Instance* const found = FindInstance(instance);
  if (found == nullptr) return 0;
  try {
    found->Buffers().Append(buffer, source, size);
    return 1;
  } catch (...) {
    engine::SetLastErrorFromException(*found);
    return 0;
  }
}

int HPLReleaseBuffer(int instance, void* buffer) {
  Instance* const found = FindInstance(instance);
  if (found == nullptr) return 0;
  if (found->Buffers().Release(buffer)) return 1;
  found->SetLastError(kErrorBadBuffer);
  return 0;
}

int HPLStringResultLength(int instance) {
  const Instance* const found = FindInstance(instance);
  return found != nullptr ? found->WideResultLength() : 0;
}

int HPLAnsiStringResultLength(int instance) {
  const Instance* const found = FindInstance(instance);
  return found != nullptr ? found->ByteResultLength() : 0;
}

int HPLLastErrorCode(int instance) {
  const Instance* const found = FindInstance(instance);
  return found != nullptr ? found->LastError() : kErrorUnknownInstance;
}
