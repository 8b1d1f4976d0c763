// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/PlainPdf.h"

#include <cstdio>

std::string PlainPdf::Bytes() const {
  std::vector<std::string> objects = {"<< /Type /Catalog /Pages 2 0 R " + catalogEntries + " >>",
                                      "<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>",
                                      "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 200 300 ] " + pageEntries + " >>"};
  objects.insert(objects.end(), more.begin(), more.end());

  std::string bytes = "%PDF-1.4\n";
  std::string table = "0000000000 65535 f \n";
  for (std::size_t i = 0; i < objects.size(); ++i) {
    char entry[24];
    std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", bytes.size());
    table += entry;
    bytes += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1);
  const std::string start = std::to_string(bytes.size());
  return bytes + "xref\n0 " + size + "\n" + table + "trailer\n<< /Size " + size + " /Root 1 0 R " + trailerEntries +
         " >>\nstartxref\n" + start + "\n%%EOF\n";
}
