// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/QpdfBackend.h"

__attribute__((visibility("default"))) engine::Backend* HalvexEngineBackend() {
  static engine::QpdfBackend backend;
  return &backend;
}
