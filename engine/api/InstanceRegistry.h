// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "engine/api/Instance.h"

namespace engine {

// The living instances of the process, by ID. Its members may be called by several threads at a time; an instance is
// used, and released, by one thread at a time.
class InstanceRegistry {
 public:
  static InstanceRegistry& Get();

  // A new instance's ID: positive and not in use.
  int Create();
  // False when there is none.
  bool Release(int id);
  // Null when there is none.
  Instance* Find(int id);

 private:
  InstanceRegistry() = default;

  std::mutex mutex_;
  std::unordered_map<int, std::unique_ptr<Instance>> instances_;
  int lastId_ = 0;
};

}  // namespace engine
