// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

// What QPDFXRefEntry::getType() returns (ISO 32000-1, table 18).
constexpr int kInFile = 1;
constexpr int kInStream = 2;

}  // namespace engine
