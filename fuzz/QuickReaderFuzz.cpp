// SPDX-License-Identifier: Apache-2.0
// What the quick reader reads, libqpdf must read too, for files in which libqpdf finds nothing to warn of.
#include <cstdio>
#include <cstdlib>

#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/quick/QuickBaseUrl.h"

using engine::InputFile;
using engine::QuickReader;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const auto input = InputFile::FromBytes(bytes);
  QuickReader::ReadTail(*input);
  const auto document = QuickReader::Read(*input);
  if (!document) return 0;
  const auto full = FullParser::Read(bytes);
  if (!full || !full->Sound()) return 0;
  const std::string baseUrl = QuickBaseUrl(*document).value_or(full->baseUrl);
  if (document->tail.root != full->root || baseUrl != full->baseUrl) {
    std::fprintf(stderr,
                 "violated: the quick reader reads what the full parser reads: object %u, base URL \"%s\"; full: "
                 "object %u, base URL \"%s\"\n",
                 document->tail.root.number, baseUrl.c_str(), full->root.number, full->baseUrl.c_str());
    std::abort();
  }
  return 0;
}
