// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "pdflib/LibraryErrorCodes.h"

namespace engine {

// The string arguments of one instance. A handle is a number, not an address, and is never used twice in the process.
// So a handle that was released, or belongs to another instance, is recognised as unknown.
class BufferPool {
 public:
  // A buffer for `size` bytes. Never null, which would mean an empty text. When the buffer cannot be made, `error` is
  // set and every use of the handle fails with that error.
  void* Create(int size, LibraryErrorCode& error);
  // Appends to the buffer. Throws EngineError: kErrorBadBuffer for an unknown handle or more bytes than it was made
  // for, kErrorBadArgument for a negative size or null with a size above 0. Nothing is appended then.
  void Append(void* handle, const void* source, int size);
  // False when the handle is unknown.
  bool Release(void* handle);

  // The buffer's bytes; valid until its release. Throws EngineError: kErrorBadBuffer for an unknown handle or a buffer
  // that holds fewer bytes than it was made for, or the reason why it could not be made.
  std::string_view Bytes(void* handle) const;

 private:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};
  struct Buffer {
    std::uint64_t handle = 0;  // 0: a free slot
    std::uint32_t nextFree = kNone;
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
    std::size_t capacity = 0;
  };

  Buffer* Find(void* handle);
  const Buffer* Find(void* handle) const { return const_cast<BufferPool*>(this)->Find(handle); }

  std::vector<Buffer> buffers_;
  std::uint32_t firstFree_ = kNone;
};

}  // namespace engine
