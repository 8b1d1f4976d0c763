// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>

// Reading small inputs that the user names: a file, a pipe, or "-" for the standard input. A stop signal ends the wait
// for a pipe's writer.
namespace NamedInput {

// `what` is for the message, as in "password file". Throws CommandError(kExitUsage) when it cannot be read, is a PDF
// file (an option without its value takes the next argument, an input) or has more than `most` bytes; and what
// Interruption::Check throws.
std::string ReadAll(const std::string& name, const char* what,
                    std::size_t most = std::numeric_limits<std::size_t>::max());

// Calls `each` for the names of a list: separated by NUL if one occurs, else by newlines, or by CR and LF if every line
// ends so; empty names are left out. Throws as ReadAll does.
void ReadNames(const std::string& name, const char* what, const std::function<void(std::string)>& each);

}  // namespace NamedInput
