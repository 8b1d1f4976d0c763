// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <string>
#include <vector>

// A file of a script in quick/files, and its row in the script's table.
struct SampleFile {
  std::string folder;
  std::string name;  // without ".pdf"
  std::string kind;
  std::string detail;

  std::string Path() const { return folder + '/' + name + ".pdf"; }
  // Letters, digits and underscores.
  std::string CaseName() const;
  static std::vector<SampleFile> All(const std::string& folder);

  friend std::ostream& operator<<(std::ostream& out, const SampleFile& file) { return out << file.name; }
};
