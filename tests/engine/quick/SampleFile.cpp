// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/quick/SampleFile.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

}  // namespace

std::vector<SampleFile> SampleFile::All() {
  std::vector<SampleFile> files;
  std::ifstream table(QUICK_SAMPLES "/expected.tsv");
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    SampleFile file;
    std::string kind;
    std::string url;
    fields >> file.name >> kind >> url;
    file.path = QUICK_SAMPLES "/" + file.name;
    file.answered = kind == "answered";
    file.baseUrl = FromHex(url);
    files.push_back(file);
  }
  return files;
}

SampleFile SampleFile::Named(const std::string& name) {
  for (const SampleFile& file : All()) {
    if (file.name == name) return file;
  }
  throw std::out_of_range(name);
}
