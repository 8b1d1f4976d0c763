// SPDX-License-Identifier: Apache-2.0
#include "engine/save/Edits.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <ctime>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/Backend.h"
#include "engine/links/ActionTable.h"
#include "engine/save/AppendUpdate.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/MapStrings.h"
#include "engine/syntax/TextString.h"
#include "tests/support/Files.h"
#include "tests/support/PdfFile.h"

using engine::AppendUpdate;
using engine::ChangedObject;
using engine::DictionaryText;
using engine::Edits;
using engine::InputFile;
using engine::OutputFile;

namespace {

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

// Every action of a damaged document can lead to all others, from each of its places.
TEST(ActionTable, HasABoundOfAllActionsTogether) {
  class Texts : public engine::ObjectTexts {
    std::string Text(engine::ObjectId id) override {
      return "<< /S /URI /URI (x) /Next " + std::to_string(id.number % 5 + 1) + " 0 R >>";
    }
  } texts;
  engine::ActionTable actions(12);  // two places have five actions each, and one after them that is none
  const auto place = [&](std::uint32_t number) {
    return engine::ActionSlot(texts, {{number, 0}, {}, "<< /A 1 0 R >>"}, "/A");
  };
  EXPECT_EQ(actions.Register(texts, {place(10)}), 1);
  EXPECT_EQ(actions.Register(texts, {place(11)}), 7);
  EXPECT_THROW(actions.Register(texts, {place(12)}), engine::EngineError);
  EXPECT_EQ(actions.Register(texts, {place(11)}), 7);
}

}  // namespace

TEST(EditsTest, TimeGrowsWithTheNumberOfObjectsOnly) {
  const double few = SecondsToEdit(2'000);
  const double many = SecondsToEdit(8'000);
  EXPECT_LT(many, 8 * few);  // 4 is linear, 16 is quadratic
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
      {"<</B 1/A 2/B 3>>", "/B", nullptr, "<</A 2>>"},
  };
  for (const auto& each : cases) {
    DictionaryText dictionary(each.before);
    if (each.value != nullptr) {
      dictionary.Set(each.key, each.value);
    } else {
      dictionary.Remove(each.key);
    }
    EXPECT_EQ(dictionary.Text(), each.after);
    // The entries are where a reader of the new text finds them.
    dictionary.Set("/New", "1");
    dictionary.Set("/New", "(22)");
    EXPECT_TRUE(dictionary.SameEntries(DictionaryText(dictionary.Text())));
    dictionary.Remove("/New");
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
