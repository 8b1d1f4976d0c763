// SPDX-License-Identifier: Apache-2.0
// PDF files made from texts.
#pragma once

#include <string>
#include <vector>

// A small file with a cross-reference table. Object 1 is the catalog, 2 the page tree, 3 its page of 200 by 300 points;
// those in `more` follow from 4 on.
struct PlainPdf {
  std::string catalogEntries;
  std::string pageEntries;
  std::string trailerEntries;
  std::vector<std::string> more;

  std::string Bytes() const;
};

// The same file with a cross-reference offset that leads nowhere.
std::string WithBrokenXref(std::string pdf);

enum class XrefKind {
  kTable,          // objects with a cross-reference table
  kStream,         // objects with a cross-reference stream
  kObjectStreams,  // a cross-reference stream, the objects in object streams of a hundred
};

// A file of many pages, for what it costs to open one. The catalog is the first object or the last one.
std::string LargePdf(XrefKind kind, int pages, bool catalogLast);
