// SPDX-License-Identifier: Apache-2.0
#include "engine/save/AppendUpdate.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/syntax/DictionaryText.h"
#include "tests/engine/quick/QuickBaseUrl.h"
#include "tests/support/Files.h"

using engine::AppendUpdate;
using engine::ChangedObject;
using engine::FileTail;
using engine::InputFile;
using engine::OutputFile;
using engine::QuickReader;

namespace {

std::string Appended(const std::string& source, const FileTail& tail, const std::vector<ChangedObject>& changes) {
  OutputFile output;
  AppendUpdate(*InputFile::FromBytes(source), tail, changes, output);
  return output.TakeBytes().substr(source.size());
}

FileTail TailOf(FileTail::Kind kind) {
  FileTail tail;
  tail.startXref = 7;
  tail.kind = kind;
  tail.size = 12;
  tail.root = {1, 0};
  tail.entries = {{"/Info", "2 0 R"}, {"/Encrypt", "3 0 R"}, {"/ID", "[(a\\)b)<01>]"}};
  return tail;
}

}  // namespace

TEST(AppendUpdateTest, WritesATable) {
  const std::string text =
      Appended("%PDF-1.4", TailOf(FileTail::Kind::kTable), {{{10, 2}, "(ten)"}, {{9, 0}, "(nine)"}});
  const std::string start =
      "\n10 2 obj\n(ten)\nendobj\n9 0 obj\n(nine)\nendobj\n"
      "xref\n9 2\n0000000031 00000 n \n0000000009 00002 n \n"
      "trailer\n<< /Size 12 /Root 1 0 R /Info 2 0 R /Encrypt 3 0 R /ID [(a\\)b)<";
  EXPECT_EQ(text.substr(0, start.size()), start);
  EXPECT_EQ(text.substr(start.size() + 32), ">] /Prev 7 >>\nstartxref\n53\n%%EOF\n");
}

TEST(AppendUpdateTest, WritesAStreamWithItsOwnEntry) {
  const std::string text = Appended("%PDF-1.5\n", TailOf(FileTail::Kind::kStream), {{{20, 0}, "(x)"}});
  const std::string start = "20 0 obj\n(x)\nendobj\n21 0 obj\n<< /Type /XRef /W [ 1 1 2 ] /Index [ 20 2 ] /Size 22 ";
  EXPECT_EQ(text.substr(0, start.size()), start);
  const std::string rows("\1\x09\0\0\1\x1d\0\0", 8);
  EXPECT_NE(text.find(" /Length 8 >>\nstream\n" + rows + "\nendstream\nendobj\nstartxref\n29\n%%EOF\n"),
            std::string::npos);
}

TEST(AppendUpdateTest, IdentifierDependsOnOldOneAndChangesOnly) {
  const auto identifier = [](const std::string& old, const std::string& body) {
    FileTail tail = TailOf(FileTail::Kind::kTable);
    tail.entries = {{"/ID", old}};
    const std::string text = Appended("%PDF-1.4\n", tail, {{{1, 0}, body}});
    const std::size_t begin = text.find("/ID ") + 4;
    return text.substr(begin, text.find(" /Prev") - begin);
  };
  const std::string first = identifier("[<0011><2233>]", "a");
  EXPECT_EQ(first.substr(0, 8), "[<0011><");
  EXPECT_EQ(first.size(), 8 + 32 + 2u);
  EXPECT_EQ(identifier("[<0011><2233>]", "a"), first);
  EXPECT_NE(identifier("[<0011><2233>]", "b"), first);
  EXPECT_NE(identifier("[<0011><2244>]", "a"), first);
  for (const std::string odd : {"5 0 R", "[]", "[<00>", "[1 2]", "(x)"}) EXPECT_EQ(identifier(odd, "a"), odd);
}

// The file's end, with the trailer and the catalog, lies beyond a hole.
TEST(AppendUpdateTest, OffsetsBeyondFourAndTenGigabytes) {
  struct {
    const char* sample;
    std::uint64_t size;
    FileTail::Kind kind;
  } const cases[] = {{"table-lf.pdf", 5'000'000'000, FileTail::Kind::kTable},
                     {"xref-stream-lf.pdf", 5'000'000'000, FileTail::Kind::kStream},
                     // More digits than a table has room for.
                     {"table-lf.pdf", 10'000'000'010, FileTail::Kind::kStream}};
  for (const auto& c : cases) {
    std::filesystem::copy_file(QUICK_SAMPLES "/" + std::string(c.sample), "large.pdf",
                               std::filesystem::copy_options::overwrite_existing);
    const std::string bytes = ReadText("large.pdf");
    // After a table, qpdf would read the hole to its end.
    const bool table = bytes.find("\nxref") != std::string::npos;
    const std::size_t cut = bytes.rfind(table ? "\nxref" : "\nstartxref");
    std::filesystem::resize_file("large.pdf", cut);
    std::filesystem::resize_file("large.pdf", c.size);
    {
      std::string end = bytes.substr(cut);
      if (table) end.replace(end.rfind("startxref") + 10, std::string::npos, std::to_string(c.size + 1) + "\n%%EOF\n");
      const int descriptor = open("large.pdf", O_WRONLY);
      ASSERT_EQ(pwrite(descriptor, end.data(), end.size(), static_cast<off_t>(c.size)),
                static_cast<ssize_t>(end.size()));
      close(descriptor);
    }
    for (const char* url : {"first", "second"}) {
      const auto input = InputFile::Open("large.pdf");
      const auto document = QuickReader::Read(*input);
      ASSERT_TRUE(document.has_value()) << c.sample << url;
      OutputFile output("large.pdf");
      engine::DictionaryText catalog(document->catalog);
      catalog.Set("/URI", "<< /Base (" + std::string(url) + ") >>");
      AppendUpdate(*input, document->tail, {{document->tail.root, catalog.Text()}}, output);
      output.Commit();
    }
    const auto again = QuickReader::Read(*InputFile::Open("large.pdf"));
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(QuickBaseUrl(*again), "second");
    EXPECT_EQ(again->tail.kind, c.kind);
    const ToolResult shown = RunTool("qpdf --suppress-recovery --show-object=1 large.pdf");
    EXPECT_EQ(shown.status, 0) << shown.output;
    EXPECT_NE(shown.output.find("/Base (second)"), std::string::npos) << shown.output;
  }
}
