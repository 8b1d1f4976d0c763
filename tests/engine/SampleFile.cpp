// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/SampleFile.h"

#include <algorithm>
#include <fstream>

std::string SampleFile::CaseName() const {
  std::string text = name;
  std::replace(text.begin(), text.end(), '-', '_');
  return text;
}

std::vector<SampleFile> SampleFile::All(const std::string& folder) {
  std::vector<SampleFile> files;
  std::ifstream table(folder + "/table.tsv");
  SampleFile file{folder, "", "", ""};
  while (table >> file.name >> file.kind >> file.detail) files.push_back(file);
  return files;
}
