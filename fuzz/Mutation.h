// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A damaged file, and what was done to it.
struct Mutation {
  std::filesystem::path source;  ///< the undamaged file
  std::string bytes;
  std::string history;  ///< "table-lf.pdf, 2048 bytes appended"
};

/// Damages one of the files, of which there must be one; the same result for the same files, `seed` and `number`.
/// Throws std::runtime_error when a file cannot be read.
Mutation Mutate(const std::vector<std::filesystem::path>& files, std::uint64_t seed, std::uint64_t number);

std::string ReadFile(const std::filesystem::path& path);
