// SPDX-License-Identifier: Apache-2.0
#include "engine/save/Edits.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <ctime>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/Backend.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/MapStrings.h"
#include "engine/syntax/TextString.h"
#include "tests/engine/PlainPdf.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/quick/Tools.h"

using engine::AppendUpdate;
using engine::ChangedObject;
using engine::DictionaryText;
using engine::Edits;
using engine::FileTail;
using engine::InputFile;
using engine::OutputFile;

namespace {

std::string Updated(const std::string& source, const FileTail& tail, const std::vector<ChangedObject>& changes) {
  OutputFile output;
  AppendUpdate(*InputFile::FromBytes(source), tail, changes, output);
  return output.TakeBytes();
}

engine::Backend& LoadedBackend() {
  void* const module = dlopen(HALVEXENGINEBACKEND_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  EXPECT_NE(module, nullptr) << dlerror();
  return *reinterpret_cast<decltype(&HalvexEngineBackend)>(dlsym(module, "HalvexEngineBackend"))();
}

// Seconds of this process that it takes to change every one of `count` objects of an encrypted file in one save.
double SecondsToEdit(int count) {
  PlainPdf pdf;
  for (int i = 0; i < count; ++i) pdf.more.push_back("<< /URI (a.html) >>");
  WriteFile("plain.pdf", pdf.Bytes());
  EXPECT_EQ(RunTool("qpdf --preserve-unreferenced --encrypt '' o 128 --use-aes=y -- plain.pdf many.pdf").status, 0);
  const auto source = InputFile::Open("many.pdf");
  const std::clock_t start = std::clock();
  const auto document = LoadedBackend().Open(source, "");
  Edits edits;
  const std::uint32_t end = document->FirstFreeNumber();
  for (std::uint32_t number = 4; number < end; ++number) {
    const auto text = document->ObjectText({number, 0});
    if (!text || !DictionaryText::Parse(*text)) continue;
    DictionaryText dictionary(*text);
    if (dictionary.Find("/URI") != "(a.html)") continue;
    dictionary.Set("/URI", "(https://example.org/a.html)");
    edits.Set({number, 0}, dictionary.Text());
  }
  EXPECT_GE(edits.Objects().size(), static_cast<std::size_t>(count) - 1);
  std::vector<ChangedObject> objects;
  for (const auto& [id, text] : edits.Objects()) objects.push_back({id, document->EncryptStrings(id, text)});
  OutputFile output;
  AppendUpdate(*source, document->Tail().value(), objects, output);
  EXPECT_TRUE(document->VerifyUpdate(output.ReadBack(), edits));
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

}  // namespace

TEST(EditsTest, TimeGrowsWithTheNumberOfObjectsOnly) {
  const double few = SecondsToEdit(25'000);
  const double many = SecondsToEdit(100'000);
  EXPECT_LT(many, 8 * few);  // 4 is linear, 16 is quadratic
}

// A file whose cross-reference nobody can read: everything is where the complete section says.
TEST(EditsTest, CompleteSectionsStandAlone) {
  for (const bool inStream : {false, true}) {
    SCOPED_TRACE(inStream ? "stream" : "table");
    const std::string pages = "<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>";
    const std::string page = "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 200 300 ] >>";
    std::string source = "%PDF-1.5\n";
    FileTail tail;
    tail.root = {1, 0};
    tail.entries = {{"/Info", "9 0 R"}, {"/ID", "[<00><00>]"}};
    tail.kept.emplace();
    const auto add = [&](std::uint32_t number, const std::string& body) {
      tail.kept->push_back({{number, 0}, source.size(), 0, 0});
      source += std::to_string(number) + " 0 obj\n" + body + "\nendobj\n";
    };
    add(1, "<< /Type /Catalog /Pages 2 0 R /Lang (old) >>");
    add(9, "<< /Title (kept) >>");
    if (inStream) {
      const std::string head = "2 0 3 " + std::to_string(pages.size() + 1) + ' ';
      const std::string data = head + pages + ' ' + page;
      add(5, "<< /Type /ObjStm /N 2 /First " + std::to_string(head.size()) + " /Length " + std::to_string(data.size()) +
                 " >>\nstream\n" + data + "\nendstream");
      tail.kept->push_back({{2, 0}, 0, 5, 0});
      tail.kept->push_back({{3, 0}, 0, 5, 1});
    } else {
      add(2, pages);
      add(3, page);
    }
    source += "startxref\n5\n%%EOF\n";

    const std::string updated =
        Updated(source, tail, {{{1, 0}, "<< /Type /Catalog /Pages 2 0 R /Lang (new) >>"}, {{12, 0}, "(added)"}});
    EXPECT_EQ(updated.substr(0, source.size()), source);
    EXPECT_EQ(updated.find("/Prev"), std::string::npos);
    EXPECT_EQ(updated.find("\nxref\n") == std::string::npos, inStream);
    WriteFile("out.pdf", updated);
    const ToolResult check = RunTool("qpdf --check out.pdf");
    EXPECT_EQ(check.status, 0) << check.output;
    EXPECT_EQ(RunTool("mutool show -g out.pdf trailer/Root/Lang 12").output, "(new)\n12 0 obj (added)\n");
    const std::string information = RunTool("pdfinfo out.pdf").output;
    EXPECT_NE(information.find("Title:           kept"), std::string::npos) << information;
    EXPECT_NE(information.find("200 x 300 pts"), std::string::npos) << information;
    EXPECT_EQ(information.find("rror"), std::string::npos) << information;
    const auto quick = engine::QuickReader::Read(*InputFile::FromBytes(updated));
    ASSERT_TRUE(quick);
    EXPECT_EQ(quick->tail.size, inStream ? 14u : 13u);
  }
}

TEST(EditsTest, DictionariesKeepWhatIsNotChanged) {
  const struct {
    const char* before;
    const char* key;
    const char* value;  // null: removed
    const char* after;
  } cases[] = {
      {"<</A/B/C#2341 1>>", "/A", "5 0 R", "<</A 5 0 R/C#2341 1>>"},
      {"<</O#77n(x) /C 2>>", "/Own", "(y)", "<</O#77n(y) /C 2>>"},
      {"<</A 1>>", "/B #", "2", "<</A 1/B#20#23 2>>"},
      {"<</A 1/B 2 % >>\n/A 3>>", "/A", "4", "<</B 2 % >>\n/A 4>>"},
      {"<</A[1<</B 2>>]/B(>>)>>", "/B", nullptr, "<</A[1<</B 2>>]>>"},
  };
  for (const auto& each : cases) {
    DictionaryText dictionary(each.before);
    if (each.value != nullptr) {
      dictionary.Set(each.key, each.value);
    } else {
      dictionary.Remove(each.key);
    }
    EXPECT_EQ(dictionary.Text(), each.after);
  }
  for (const char* const text : {"", "null", "<<", "<</A>>", "<<1 2>>", "<</A 1>> 2"}) {
    EXPECT_FALSE(DictionaryText::Parse(text)) << text;
  }
}

TEST(EditsTest, StringsAreMappedAndNothingElse) {
  const auto map = [](const std::string& bytes) { return '{' + bytes + '}'; };
  const std::pair<const char*, const char*> cases[] = {
      {"(a\\))", "{a)}"},
      {"5 0 R", "5 0 R"},
      {"<</A#20(x)/B[<6162> << /C (y) >> %(z)\n]>>", "<</A#20{x}/B[{ab} << /C {y} >> %(z)\n]>>"},
      {"<</S <</Type/Sig/ByteRange[0 1]/Contents<00>/T(t)>>/Contents(c)>>",
       "<</S <</Type/Sig/ByteRange[0 1]/Contents<00>/T{t}>>/Contents{c}>>"},
  };
  for (const auto& [text, mapped] : cases) EXPECT_EQ(engine::MapStrings(text, map), mapped);
}

TEST(EditsTest, TextStringsAreReadAndWritten) {
  const std::pair<std::string, std::string> both[] = {{"plain\t", "plain\t"},
                                                      {"\x80\xA0\xE9\x18", "\xE2\x80\xA2\xE2\x82\xAC\xC3\xA9\xCB\x98"},
                                                      {std::string("\xFE\xFF\xD8\x3D\xDE\x00", 6), "\xF0\x9F\x98\x80"},
                                                      // In PDFDocEncoding these would begin with a byte order mark.
                                                      {std::string("\xFE\xFF\0\xFE\0\xFF", 6), "\xC3\xBE\xC3\xBF"}};
  for (const auto& [bytes, utf8] : both) {
    EXPECT_EQ(engine::Utf8FromTextString(bytes), utf8);
    EXPECT_EQ(engine::TextStringFromUtf8(utf8), bytes);
  }
  const std::pair<std::string, std::string> read[] = {{std::string("\xFF\xFE"
                                                                   "a\0",
                                                                   4),
                                                       "a"},
                                                      {"\xEF\xBB\xBF\xC3\xA9", "\xC3\xA9"},
                                                      {"\x9F\xAD", "\xEF\xBF\xBD\xEF\xBF\xBD"}};
  for (const auto& [bytes, utf8] : read) EXPECT_EQ(engine::Utf8FromTextString(bytes), utf8);
}
