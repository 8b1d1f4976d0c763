// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <string>
#include <vector>

// A file of files/make.py and what its table says of it.
struct SampleFile {
  std::string name;
  std::string path;
  bool answered = false;
  std::string baseUrl;

  static std::vector<SampleFile> All();
  // Throws std::out_of_range for a name that is not in the table.
  static SampleFile Named(const std::string& name);

  friend std::ostream& operator<<(std::ostream& out, const SampleFile& file) { return out << file.name; }
};
