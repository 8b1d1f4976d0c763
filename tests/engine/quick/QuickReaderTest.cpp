// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/QuickReader.h"

#include <gtest/gtest.h>

#include "engine/base/InputFile.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/quick/QuickBaseUrl.h"
#include "tests/engine/SampleFile.h"
#include "tests/support/Files.h"
#include "tests/support/PdfFile.h"

using engine::InputFile;
using engine::QuickReader;

TEST(QuickReaderTest, AnswersAsTheFullParserOrNotAtAll) {
  for (const SampleFile& sample : SampleFile::All(QUICK_SAMPLES)) {
    SCOPED_TRACE(sample.name);
    const auto input = InputFile::Open(sample.Path());
    const auto document = QuickReader::Read(*input);
    EXPECT_LT(input->BytesRead(), 64 * 1024u + 4 * input->Size());
    const auto tail = QuickReader::ReadTail(*input);

    EXPECT_EQ(document.has_value(), sample.kind == "answered");
    if (!document) continue;
    const auto full = FullParser::Read(ReadText(sample.Path()));
    ASSERT_TRUE(full.has_value());
    EXPECT_TRUE(document->tail.root == full->root);
    EXPECT_EQ(full->baseUrl, QByteArray::fromHex(sample.detail.c_str()).toStdString());
    EXPECT_EQ(QuickBaseUrl(*document).value_or(full->baseUrl), full->baseUrl);
    // The tail alone is the same.
    ASSERT_TRUE(tail.has_value());
    EXPECT_EQ(tail->startXref, document->tail.startXref);
    EXPECT_EQ(tail->kind, document->tail.kind);
    EXPECT_EQ(tail->size, document->tail.size);
    EXPECT_TRUE(tail->root == document->tail.root);
  }
}

// Counted in bytes, which do not depend on the machine's load.
TEST(QuickReaderTest, CostDoesNotGrowWithTheObjects) {
  for (const XrefKind kind : {XrefKind::kTable, XrefKind::kStream, XrefKind::kObjectStreams}) {
    for (const bool catalogLast : {false, true}) {
      std::uint64_t read[2] = {};
      std::size_t size[2] = {};
      for (int large = 0; large < 2; ++large) {
        const std::string bytes = LargePdf(kind, large != 0 ? 50000 : 1000, catalogLast);
        size[large] = bytes.size();
        const auto input = InputFile::FromBytes(bytes);
        const auto document = QuickReader::Read(*input);
        ASSERT_TRUE(document.has_value());
        EXPECT_EQ(QuickBaseUrl(*document), "http://example.org/");
        read[large] = input->BytesRead();
      }
      // A cross-reference stream must be inflated as far as the entry of the catalog or of its object stream, which is
      // a small part of the file; all else is constant.
      const bool inflates = kind == XrefKind::kObjectStreams || (kind == XrefKind::kStream && catalogLast);
      const std::uint64_t bound = read[0] + 16 * 1024 + (inflates ? size[1] / 25 : 0);
      EXPECT_LT(read[1], bound) << static_cast<int>(kind) << catalogLast;
      EXPECT_LT(read[0], 64 * 1024u);
    }
  }
}
