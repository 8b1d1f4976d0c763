// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// A small PDF file with a cross-reference table, made from texts. Object 1 is the catalog, 2 the page tree, 3 its page;
// those in `more` follow from 4 on.
struct PlainPdf {
  std::string catalogEntries;
  std::string pageEntries;
  std::string trailerEntries;
  std::vector<std::string> more;

  std::string Bytes() const;
};
