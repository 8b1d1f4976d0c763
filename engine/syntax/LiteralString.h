// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace engine {

// The bytes as a literal string object (ISO 32000-1, 7.3.4.2).
std::string LiteralString(const std::string& bytes);
// The bytes as a hexadecimal string object (ISO 32000-1, 7.3.4.3).
std::string HexString(const std::string& bytes);

}  // namespace engine
