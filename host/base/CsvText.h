// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace CsvText {

// The text as one field of a CSV record (RFC 4180), in quotes where it needs them.
std::string Field(const std::string& text);

}  // namespace CsvText
