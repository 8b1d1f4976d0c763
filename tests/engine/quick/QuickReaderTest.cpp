// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/QuickReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/save/AppendUpdate.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/quick/LargeFile.h"
#include "tests/engine/quick/QuickBaseUrl.h"
#include "tests/engine/quick/SampleFile.h"
#include "tests/engine/quick/Tools.h"

using engine::AppendUpdate;
using engine::FileTail;
using engine::InputFile;
using engine::OutputFile;
using engine::QuickDocument;
using engine::QuickReader;

namespace {

// Ends in what has to be escaped.
const std::string kNewUrl = "http://example.net/new/(x)\\";

std::string Updated(const InputFile& input, const QuickDocument& document, const std::string& url) {
  engine::DictionaryText catalog(document.catalog);
  catalog.Set("/URI", "<</Base" + engine::LiteralString(url) + ">>");
  OutputFile output;
  AppendUpdate(input, document.tail, {{document.tail.root, catalog.Text()}}, output);
  return output.TakeBytes();
}

class SampleTest : public testing::TestWithParam<SampleFile> {};
class PlainSampleTest : public testing::TestWithParam<SampleFile> {};

std::vector<SampleFile> PlainSamples() {
  std::vector<SampleFile> files = SampleFile::All();
  files.erase(std::remove_if(files.begin(), files.end(), [](const SampleFile& file) { return !file.answered; }),
              files.end());
  return files;
}

std::string NameOf(const testing::TestParamInfo<SampleFile>& info) {
  std::string name;
  for (const char c : info.param.name.substr(0, info.param.name.size() - 4)) name += std::isalnum(c) ? c : '_';
  return name;
}

}  // namespace

TEST_P(SampleTest, AnswersAsTheFullParserOrNotAtAll) {
  const auto start = std::chrono::steady_clock::now();
  const auto input = InputFile::Open(GetParam().path);
  const auto document = QuickReader::Read(*input);
  const auto tail = QuickReader::ReadTail(*input);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_LT(input->BytesRead(), 64 * 1024u + 4 * input->Size());

  ASSERT_EQ(document.has_value(), GetParam().answered);
  if (!document) return;
  EXPECT_EQ(QuickBaseUrl(*document).value_or(GetParam().baseUrl), GetParam().baseUrl);
  const auto full = FullParser::Read(ReadFile(GetParam().path));
  ASSERT_TRUE(full.has_value());
  EXPECT_TRUE(document->tail.root == full->root);
  EXPECT_EQ(full->baseUrl, GetParam().baseUrl);
  // The tail alone is the same.
  ASSERT_TRUE(tail.has_value());
  EXPECT_EQ(tail->startXref, document->tail.startXref);
  EXPECT_EQ(tail->kind, document->tail.kind);
  EXPECT_EQ(tail->size, document->tail.size);
  EXPECT_TRUE(tail->root == document->tail.root);
}

TEST_P(PlainSampleTest, UpdateKeepsTheFileAndIsReadByOthers) {
  const std::string before = ReadFile(GetParam().path);
  const auto wasRead = FullParser::Read(before);
  std::string previous = before;
  for (const std::string& url : {kNewUrl, std::string("b"), std::string()}) {
    const auto input = InputFile::FromBytes(previous);
    const auto document = QuickReader::Read(*input);
    ASSERT_TRUE(document.has_value());
    const std::string after = Updated(*input, *document, url);
    EXPECT_EQ(after, Updated(*input, *document, url)) << "the same input must give the same bytes";
    ASSERT_EQ(after.compare(0, previous.size(), previous), 0);

    const auto isRead = FullParser::Read(after);
    ASSERT_TRUE(isRead.has_value());
    EXPECT_EQ(isRead->baseUrl, url);
    EXPECT_EQ(isRead->pageCount, wasRead->pageCount);
    EXPECT_TRUE(isRead->Sound() || !wasRead->Sound());
    const auto again = QuickReader::Read(*InputFile::FromBytes(after));
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(QuickBaseUrl(*again), url);
    EXPECT_EQ(again->tail.kind == FileTail::Kind::kStream, document->tail.kind == FileTail::Kind::kStream);
    previous = after;
  }
}

TEST_P(PlainSampleTest, OutsideToolsAcceptTheUpdate) {
  const auto input = InputFile::Open(GetParam().path);
  const auto document = QuickReader::Read(*input);
  ASSERT_TRUE(document.has_value());
  WriteFile("out.pdf", Updated(*input, *document, kNewUrl));
  const ToolResult check = RunTool("qpdf --check out.pdf");
  EXPECT_EQ(check.status, RunTool("qpdf --check '" + GetParam().path + "'").status) << check.output;
  const ToolResult base = RunTool("mutool show out.pdf trailer/Root/URI/Base");
  EXPECT_EQ(base.status, 0);
  EXPECT_EQ(base.output, "(http://example.net/new/\\(x\\)\\\\)\n");
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleTest, testing::ValuesIn(SampleFile::All()), NameOf);
INSTANTIATE_TEST_SUITE_P(Samples, PlainSampleTest, testing::ValuesIn(PlainSamples()), NameOf);

// Counted in bytes, which do not depend on the machine's load.
TEST(QuickReaderTest, CostDoesNotGrowWithTheObjects) {
  using Kind = LargeFile::Kind;
  for (const Kind kind : {Kind::kTable, Kind::kStream, Kind::kObjectStreams}) {
    for (const bool catalogLast : {false, true}) {
      std::uint64_t read[2] = {};
      std::size_t size[2] = {};
      for (int large = 0; large < 2; ++large) {
        const std::string bytes = LargeFile::Make(kind, large != 0 ? 200000 : 1000, catalogLast);
        size[large] = bytes.size();
        const auto input = InputFile::FromBytes(bytes);
        const auto document = QuickReader::Read(*input);
        ASSERT_TRUE(document.has_value());
        EXPECT_EQ(QuickBaseUrl(*document), "http://example.org/");
        read[large] = input->BytesRead();
      }
      // A cross-reference stream must be inflated as far as the entry of the catalog or of its object stream, which is
      // a small part of the file; all else is constant.
      const bool inflates = kind == Kind::kObjectStreams || (kind == Kind::kStream && catalogLast);
      const std::uint64_t bound = read[0] + 16 * 1024 + (inflates ? size[1] / 25 : 0);
      EXPECT_LT(read[1], bound) << static_cast<int>(kind) << catalogLast;
      EXPECT_LT(read[0], 64 * 1024u);
    }
  }
}
