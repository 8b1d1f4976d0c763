// SPDX-License-Identifier: Apache-2.0
#include "engine/api/InstanceRegistry.h"

#include <limits>

namespace engine {

InstanceRegistry& InstanceRegistry::Get() {
  static InstanceRegistry registry;
  return registry;
}

int InstanceRegistry::Create() {
  auto instance = std::make_unique<Instance>();
  do {
    lastId_ = lastId_ == std::numeric_limits<int>::max() ? 1 : lastId_ + 1;
  } while (instances_.count(lastId_) != 0);
  instances_.emplace(lastId_, std::move(instance));
  return lastId_;
}

bool InstanceRegistry::Release(int id) {
  return instances_.erase(id) != 0;
}

Instance* InstanceRegistry::Find(int id) {
  const auto found = instances_.find(id);
  return found != instances_.end() ? found->second.get() : nullptr;
}

}  // namespace engine
