// SPDX-License-Identifier: Apache-2.0
// What the quick reader reads, libqpdf must read too, for files in which libqpdf finds nothing to warn of. Load, set,
// append, read again: the new base URL is there for both readers and nothing else has changed.
#include <cstdio>
#include <cstdlib>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/quick/QuickBaseUrl.h"

using engine::AppendUpdate;
using engine::InputFile;
using engine::OutputFile;
using engine::QuickReader;

namespace {

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "violated: %s\n", what);
  std::abort();
}

void CheckUpdate(const std::string& bytes, const std::string& url) {
  const auto input = InputFile::FromBytes(bytes);
  const auto document = QuickReader::Read(*input);
  if (!document) return;
  engine::DictionaryText catalog(document->catalog);
  catalog.Set("/URI", "<< /Base " + engine::LiteralString(url) + " >>");
  OutputFile output;
  AppendUpdate(*input, document->tail, {{document->tail.root, catalog.Text()}}, output);
  const std::string after = output.TakeBytes();
  Require(after.compare(0, bytes.size(), bytes) == 0, "the source is a prefix");

  const auto again = QuickReader::Read(*InputFile::FromBytes(after));
  Require(again && QuickBaseUrl(*again) == url, "the quick reader reads its own update");
  const auto before = FullParser::Read(bytes);
  if (!before || !before->Sound()) return;
  Require(document->tail.root == before->root, "both readers find the same catalog");
  Require(QuickBaseUrl(*document).value_or(before->baseUrl) == before->baseUrl, "both readers find the same base URL");
  const auto full = FullParser::Read(after);
  Require(full.has_value(), "the full parser opens the update");
  Require(full->baseUrl == url, "the full parser reads the new base URL");
  Require(full->pageCount == before->pageCount, "the page count is kept");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  QuickReader::ReadTail(*InputFile::FromBytes(bytes));
  CheckUpdate(bytes, "http://example.net/(\\");
  CheckUpdate(bytes, "");
  return 0;
}
