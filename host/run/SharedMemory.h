// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/mman.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <type_traits>

// Atomic values, all 0 at first, that this process and its later children see alike.
template <typename T>
class SharedAtomics {
 public:
  // Throws std::bad_alloc.
  explicit SharedAtomics(std::size_t count) : size_(count * sizeof(std::atomic<T>)) {
    static_assert(std::atomic<T>::is_always_lock_free && std::is_integral_v<T>);
    void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    values_ = static_cast<std::atomic<T>*>(memory);
  }
  ~SharedAtomics() { munmap(values_, size_); }
  SharedAtomics(const SharedAtomics&) = delete;
  SharedAtomics& operator=(const SharedAtomics&) = delete;

  std::atomic<T>& operator[](std::size_t index) { return values_[index]; }
  const std::atomic<T>& operator[](std::size_t index) const { return values_[index]; }

 private:
  std::size_t size_;
  std::atomic<T>* values_;
};
