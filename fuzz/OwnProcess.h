// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>

/// What a piece of work returned, or how it ended instead.
struct Outcome {
  std::optional<std::string> result;
  std::string end;  ///< "crashed: signal 11", "took too long", ...; empty with a result
};

/// Runs `work` in a forked process with at most `seconds` of its own time (four times that by the clock) and 2 GiB of
/// addresses. An exception counts as a crash.
Outcome RunInOwnProcess(const std::function<std::string()>& work, int seconds);
