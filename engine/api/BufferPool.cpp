// SPDX-License-Identifier: Apache-2.0
#include "engine/api/BufferPool.h"

#include <atomic>
#include <cstring>
#include <new>

#include "engine/base/EngineError.h"

namespace engine {

namespace {

// A handle is serial number * kSlotLimit + slot. Those below kSlotLimit are the codes of failed creations.
constexpr std::uint64_t kSlotLimit = std::uint64_t{1} << 22;
std::atomic<std::uint64_t> gLastSerial = 0;

std::uint64_t NumberOf(void* handle) {
  return reinterpret_cast<std::uintptr_t>(handle);
}
void* HandleOf(std::uint64_t number) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number in a pointer's place, never an address.
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
}

[[noreturn]] void ThrowUnknown(void* handle) {
  const std::uint64_t number = NumberOf(handle);
  if (number == kErrorOutOfMemory) throw EngineError(kErrorOutOfMemory, "memory ran out for a buffer");
  if (number == kErrorBadArgument) throw EngineError(kErrorBadArgument, "a buffer was asked for with a negative size");
  throw EngineError(kErrorBadBuffer, "unknown or released buffer");
}

}  // namespace

void* BufferPool::Create(int size, LibraryErrorCode& error) {
  const auto fail = [&](LibraryErrorCode code) {
    error = code;
    return HandleOf(static_cast<std::uint64_t>(code));
  };
  if (size < 0) return fail(kErrorBadArgument);
  try {
    if (firstFree_ == kNone) {
      if (buffers_.size() == kSlotLimit) return fail(kErrorOutOfMemory);
      buffers_.emplace_back();
      firstFree_ = static_cast<std::uint32_t>(buffers_.size() - 1);
    }
    const std::uint32_t slot = firstFree_;
    Buffer& buffer = buffers_[slot];
    buffer.capacity = static_cast<std::size_t>(size);
    buffer.bytes.reset(new char[buffer.capacity]);
    buffer.handle = ++gLastSerial * kSlotLimit + slot;
    firstFree_ = buffer.nextFree;
    return HandleOf(buffer.handle);
  } catch (const std::bad_alloc&) {
    return fail(kErrorOutOfMemory);
  }
}

void BufferPool::Append(void* handle, const void* source, int size) {
  Buffer* const buffer = Find(handle);
  if (buffer == nullptr) ThrowUnknown(handle);
  if (size < 0 || (source == nullptr && size > 0)) throw EngineError(kErrorBadArgument, "bad source for a buffer");
  const auto count = static_cast<std::size_t>(size);
  if (count > buffer->capacity - buffer->size) throw EngineError(kErrorBadBuffer, "more bytes than the buffer holds");
  if (count > 0) std::memcpy(buffer->bytes.get() + buffer->size, source, count);
  buffer->size += count;
}

bool BufferPool::Release(void* handle) {
  Buffer* const buffer = Find(handle);
  if (buffer == nullptr) return false;
  *buffer = Buffer();
  buffer->nextFree = firstFree_;
  firstFree_ = static_cast<std::uint32_t>(buffer - buffers_.data());
  return true;
}

std::string_view BufferPool::Bytes(void* handle) const {
  const Buffer* const buffer = Find(handle);
  if (buffer == nullptr) ThrowUnknown(handle);
  if (buffer->size != buffer->capacity) throw EngineError(kErrorBadBuffer, "the buffer was not filled");
  return {buffer->bytes.get(), buffer->size};
}

BufferPool::Buffer* BufferPool::Find(void* handle) {
  const std::uint64_t number = NumberOf(handle);
  const std::uint64_t slot = number % kSlotLimit;
  if (number < kSlotLimit || slot >= buffers_.size() || buffers_[slot].handle != number) return nullptr;
  return &buffers_[slot];
}

}  // namespace engine
