// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Divides files into parts of about as many bytes and writes the parts as lists of names.
namespace FileParts {

struct Part {
  std::vector<std::size_t> files;  // in ascending order
  std::uint64_t bytes = 0;
};

// Distributes files of these sizes: the largest first, each to the part with the fewest bytes so far, and among equal
// ones to the part with the fewest files. `count` is at least 1.
std::vector<Part> Balance(const std::vector<std::uint64_t>& sizes, std::size_t count);

// The name of a part's list: "PREFIX0007.part". The number has four digits, or as many as the last one of `count`
// needs, so that the names are in the order of the numbers.
std::string Name(const std::string& prefix, std::size_t part, std::size_t count);

// The files in the prefix's folder that have the name of any part, whatever the count.
std::vector<std::string> Existing(const std::string& prefix);

// Writes a list that must not exist yet: a name a line, or each name ended by NUL. An error message, or an empty text.
std::string Write(const std::string& name, const std::vector<std::string>& files, bool nul);

}  // namespace FileParts
