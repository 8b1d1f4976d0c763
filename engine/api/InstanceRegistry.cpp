// SPDX-License-Identifier: Apache-2.0
#include "engine/api/InstanceRegistry.h"

#include <limits>
#include <utility>

namespace engine {

InstanceRegistry& InstanceRegistry::Get() {
  static InstanceRegistry registry;
  return registry;
}

int InstanceRegistry::Create() {
  auto instance = std::make_unique<Instance>();
  const std::lock_guard lock(mutex_);
  do {
    lastId_ = lastId_ == std::numeric_limits<int>::max() ? 1 : lastId_ + 1;
  } while (instances_.count(lastId_) != 0);
  instances_.emplace(lastId_, std::move(instance));
  return lastId_;
}

bool InstanceRegistry::Release(int id) {
  std::unique_ptr<Instance> released;  // destroyed without the lock: its documents may take a while
  const std::lock_guard lock(mutex_);
  const auto found = instances_.find(id);
  if (found == instances_.end()) return false;
  released = std::move(found->second);
  instances_.erase(found);
  return true;
}

Instance* InstanceRegistry::Find(int id) {
  const std::lock_guard lock(mutex_);
  const auto found = instances_.find(id);
  return found != instances_.end() ? found->second.get() : nullptr;
}

}  // namespace engine
