// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// The hidden temporary files that a killed save may leave: ".vorlane-<16 hexadecimal digits>.tmp".
namespace LeftoverFiles {

bool IsName(std::string_view name);

// Those in a folder, as "FOLDER/NAME" in no particular order; `folder` is empty or ends in a slash. A folder that
// cannot be read has none.
std::vector<std::string> Find(const std::string& folder);

// Removes those in a folder, or below it, that were last changed before `before` and that no process has locked, as a
// running save does. A file whose content is old and whose name is new counts as new. Calls `each` with every path that
// was removed, and with the reason where a file could not be removed or a folder not be read. Links are not followed.
// Throws as Interruption::Check does.
void Remove(const std::string& folder, bool recursive, std::time_t before,
            const std::function<void(const std::string& path, const std::string& problem)>& each);

}  // namespace LeftoverFiles
