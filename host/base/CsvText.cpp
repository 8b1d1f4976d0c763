// SPDX-License-Identifier: Apache-2.0
#include "host/base/CsvText.h"

std::string CsvText::Field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) field += c == '"' ? std::string("\"\"") : std::string(1, c);
  return field + '"';
}
