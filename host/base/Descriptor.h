// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

// Owns a file descriptor; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~Descriptor() { Close(); }

  int Get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  void Close() {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_ = -1;
};
