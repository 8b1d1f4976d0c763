// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

// Name objects (ISO 32000-1, 7.3.5), with their slash.
namespace engine {

// The name's bytes, with the byte for each "#xx"; a "#" without two digits stays.
std::string UnescapedName(std::string_view name);
// The name as it is in a file, with "#xx" where the standard asks for it.
std::string EscapedName(std::string_view name);

}  // namespace engine
