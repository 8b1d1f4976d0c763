// SPDX-License-Identifier: Apache-2.0
// Damaged files, each named by its defect in quick/files/make-damaged.py: what other readers read before, they read
// after a save.
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/engine/EngineFixture.h"
#include "tests/engine/SampleFile.h"

namespace {

constexpr wchar_t kUrl[] = L"https://example.org/";

// Another reader's pages and text of a file; empty when it reads no page.
struct Readings {
  std::string poppler;
  std::string mutool;
  std::string qpdf;
  std::string qpdfContents;

  static Readings Of(const std::string& file, const std::string& password) {
    const auto ask = [&](const std::string& tool, const std::string& option, const std::string& rest) {
      const std::string with = password.empty() ? "" : option + password;
      return RunTool("{ " + tool + " " + with + " '" + file + "' " + rest + " 2>/dev/null; }").output;
    };
    return {ask("pdftotext", "-upw ", "-"), ask("mutool draw -q -F txt", "-p ", "1"),
            ask("qpdf --show-npages", "--password=", ""),
            ask("qpdf --show-object=4 --filtered-stream-data", "--password=", "")};
  }
};

class DamagedFileTest : public EngineFixture, public testing::WithParamInterface<SampleFile> {};
using RepairTest = EngineFixture;

std::string Damaged(const std::string& name) {
  return ReadText(DAMAGED_FILES "/" + name + ".pdf");
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Files, DamagedFileTest, testing::ValuesIn(SampleFile::All(DAMAGED_FILES)),
                         [](const auto& file) { return file.param.CaseName(); });

TEST_P(DamagedFileTest, LosesNothing) {
  const SampleFile& file = GetParam();
  const std::string password = file.detail == "-" ? "" : file.detail;
  const Readings before = Readings::Of(file.Path(), password);
  ASSERT_EQ(library_.LoadFromFile(Wide(file.Path()), Wide(password)), 1) << library_.LastErrorCode();
  EXPECT_EQ(library_.PageCount(), 1);
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  EXPECT_EQ(Narrow(library_.GetInformation(1000)), file.kind);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
  EXPECT_EQ(Narrow(library_.GetInformation(1004)), file.kind);
  EXPECT_EQ(StartsWith(ReadText("out.pdf"), ReadText(file.Path())), file.kind == "incremental");

  const Readings after = Readings::Of("out.pdf", password);
  EXPECT_TRUE(before.poppler.empty() || after.poppler == before.poppler);
  EXPECT_TRUE(before.mutool.find("Hello") == std::string::npos || after.mutool == before.mutool);
  EXPECT_TRUE(before.qpdf != "1\n" || after.qpdf == before.qpdf);
  if (file.kind == "incremental" && before.qpdfContents.find("Hello") != std::string::npos) {
    EXPECT_TRUE(StartsWith(after.qpdfContents, before.qpdfContents));
  }
  EXPECT_NE((after.poppler + after.mutool).find("Hello"), std::string::npos);
  if (StartsWith(file.name, "length-")) {
    EXPECT_TRUE(Sound("out.pdf"));
  }
  if (before.mutool.find("Hello") != std::string::npos) {
    const std::string option = password.empty() ? "" : "-p " + password + ' ';
    const std::string shown = "out.pdf pages trailer/Root/URI/Base";
    EXPECT_NE(RunTool("mutool show " + option + shown + " 2>&1").output.find("example.org"), std::string::npos);
  }

  ASSERT_EQ(library_.LoadFromFile(L"out.pdf", Wide(password)), 1);
  EXPECT_EQ(library_.GetBaseURL(), kUrl);
  EXPECT_EQ(library_.PageCount(), 1);
}

TEST_F(RepairTest, KeepsWhatIsInEncryptedObjectStreams) {
  for (const char* const options : {"128 --use-aes=n", "128 --use-aes=y", "256"}) {
    SCOPED_TRACE(options);
    ASSERT_EQ(RunTool("qpdf --allow-weak-crypto --object-streams=generate --encrypt u o " + std::string(options) +
                      " -- " DAMAGED_FILES "/startxref-wrong.pdf sound.pdf")
                  .status,
              3);
    const std::string junk(2048, '\xFE');
    ASSERT_TRUE(Load("damaged.pdf", ReadText("sound.pdf") + junk, L"u")) << library_.LastErrorCode();
    ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
    EXPECT_EQ(library_.GetInformation(1004), L"incremental");
    EXPECT_TRUE(Sound("out.pdf", "--password=u"));
    EXPECT_NE(Show("out.pdf", "trailer/Root/AcroForm/Fields/1", "-p u").find("/V(Value)"), std::string::npos);
    EXPECT_NE(RunTool("pdftotext -upw u out.pdf -").output.find("Hello"), std::string::npos);
  }
}

// A cipher would take the last letters for padding.
TEST_F(RepairTest, EncryptedDataWithoutTheirEndStayAsLong) {
  PlainPdf plain;
  plain.pageEntries = "/Contents 4 0 R /Resources << /Font << /F1 5 0 R >> >>";
  plain.more = {"<< /Length 48 >>\nstream\nBT /F1 9 Tf 2 9\nTd (one two) Tj\n(three four) Tj\nendstream",
                "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
  WriteFile("plain.pdf", plain.Bytes());
  RunTool("qpdf --compress-streams=n --encrypt '' o 128 --use-aes=y -- plain.pdf encrypted.pdf");
  std::string bytes = ReadText("encrypted.pdf");
  bytes.replace(bytes.find("endstream") - 16, 16, "\n");
  ASSERT_TRUE(Load("source.pdf", bytes)) << library_.LastErrorCode();
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
  for (const char* const file : {"source.pdf", "out.pdf"}) {
    const std::string text = RunTool("pdftotext " + std::string(file) + " - 2>&1").output;
    EXPECT_NE(text.find("three four"), std::string::npos) << file << text;
  }
}

// Another name would be another font.
TEST_F(RepairTest, NumberSignsInNamesSurviveARewrite) {
  ASSERT_TRUE(Load("source.pdf", Damaged("catalog-in-trailer")));
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
  EXPECT_EQ(library_.GetInformation(1004), L"rewrite");
  EXPECT_NE(ReadText("out.pdf").find("/C#2341"), std::string::npos);
}

// A reader would not read the rest of the catalog.
TEST_F(RepairTest, NumberSignsWithoutDigitsSurviveInDamagedCatalogs) {
  std::string bytes = Damaged("startxref-wrong");
  bytes.erase(bytes.rfind("startxref\n") + 10, 1);
  bytes.replace(bytes.find("/StructTreeRoot 7 0 R"), 21, "/U# /S [ 0 0 ] /T# /V");
  ASSERT_TRUE(Load("source.pdf", bytes));
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
  EXPECT_NE(ReadText("out.pdf").find("/U#23 /S"), std::string::npos);
}

TEST_F(RepairTest, NoKeysAreMadeUp) {
  ASSERT_TRUE(Load("source.pdf", Damaged("catalog-key-missing")));
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
  EXPECT_EQ(ReadText("out.pdf").find("QPDFFake"), std::string::npos);
}

TEST_F(RepairTest, FindsSignaturesWhereverTheyAre) {
  const std::string value = "<< /Type /Sig /Filter /A /ByteRange [ 0 1 2 3 ] /Contents <3031> >>";
  const std::string field = "<< /FT /Sig /T (one) /V 5 0 R /Subtype /Widget /Rect [ 0 0 0 0 ] >>";
  const struct {
    const char* where;
    PlainPdf file;
    const wchar_t* count;
  } rows[] = {
      {"a field", {"/AcroForm << /Fields [ 4 0 R ] >>", "", "", {field, value}}, L"1"},
      {"a widget that no form has", {"", "/Annots [ 4 0 R ]", "", {field, value}}, L"1"},
      {"certification", {"/Perms << /DocMDP 5 0 R >>", "", "", {"null", value}}, L"1"},
      {"usage rights", {"/Perms << /UR3 5 0 R >>", "", "", {"null", value}}, L"1"},
      {"an object that nothing refers to", {"", "", "", {"null", value}}, L"1"},
      {"a form that is lost", {"/AcroForm 99 0 R", "", "", {}}, L"1"},
      {"nowhere", {"", "", "", {}}, L"0"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.where);
    ASSERT_TRUE(Load("damaged.pdf", WithBrokenXref(row.file.Bytes())));
    EXPECT_EQ(library_.GetInformation(1002), row.count);
  }
}

// Joined files are not guessed apart, and a stream that may be encrypted is not left out.
TEST_F(RepairTest, RefusesWhatNoRepairKeepsWhole) {
  ASSERT_EQ(RunTool("qpdf --encrypt '' o 256 -- " DAMAGED_FILES "/startxref-wrong.pdf encrypted.pdf").status, 3);
  const std::string streams = Damaged("startxref-wrong-object-streams");
  std::string unreadable = streams;
  unreadable.replace(unreadable.find("stream\n", unreadable.find("/ObjStm")) + 7, 8, "garbage!");
  std::string renamed = streams;
  renamed[renamed.find("8 0 obj")] = '7';
  std::string unknown = Damaged("junk-after-object-streams");
  unknown.insert(unknown.rfind("/Length", unknown.find("stream\n", unknown.find("/ObjStm"))), "/Filter /Unknown ");
  std::string encryptionInStream = "junk\n" + ReadText("encrypted.pdf");
  encryptionInStream.replace(encryptionInStream.rfind("endstream"), 9, "endXtream");
  std::string undecrypted = ReadText("encrypted.pdf");
  undecrypted[undecrypted.rfind(" 0 obj\n<< /CF") + 1] = 'x';
  const std::size_t dictionary = undecrypted.rfind("<< /CF");
  const std::string stray =
      "9 0 obj\n" + undecrypted.substr(dictionary, undecrypted.find("endobj", dictionary) - dictionary);
  std::string withoutKey = ReadText("encrypted.pdf");
  withoutKey.replace(withoutKey.rfind("/Length 256"), 7, "       ");
  std::string lostKey = ReadText("encrypted.pdf");
  lostKey.replace(lostKey.rfind("/Encrypt"), 8, 8, ' ');
  lostKey.replace(lostKey.rfind("startxref\n") + 10, 1, "9");
  std::string verticalTab = ReadText("encrypted.pdf");
  verticalTab[verticalTab.rfind("/UE <") + 9] = '\v';
  std::string longKey = ReadText("encrypted.pdf");
  longKey.replace(longKey.rfind("/Length 256"), 11, "/Length 999");
  std::string shortKey = ReadText("encrypted.pdf");
  shortKey.replace(shortKey.rfind("/Length 32"), 10, "/Length 01");
  shortKey.replace(shortKey.rfind("startxref\n") + 10, 1, "9");
  std::string shortOwnerKey = ReadText("encrypted.pdf");
  shortOwnerKey.erase(shortOwnerKey.rfind("/O <") + 4, 30);
  ASSERT_EQ(
      RunTool("qpdf --object-streams=generate --encrypt '' o 256 -- " DAMAGED_FILES "/startxref-wrong.pdf zeroed.pdf")
          .status,
      3);
  std::string zeroed = ReadText("zeroed.pdf");
  zeroed.replace(zeroed.find("stream\n", zeroed.find("/ObjStm")) + 60, 16, 16, '\0');
  std::string unnamed = PlainPdf().Bytes();
  unnamed.replace(unnamed.find("/Type /Catalog"), 2, "/\v");
  std::string pageAsCatalog = PlainPdf().Bytes();
  pageAsCatalog.replace(pageAsCatalog.find("/Count 1"), 8, "/Count 9");
  pageAsCatalog.replace(pageAsCatalog.find("/Root 1"), 7, "/Root 3");
  pageAsCatalog.replace(pageAsCatalog.find("/Type /Page /"), 5, "/Kind");
  std::string damagedPages = PlainPdf().Bytes();
  damagedPages.replace(damagedPages.find("/Kids"), 5, "/Sons");
  damagedPages.insert(damagedPages.find("/Root"), "/ID [ <aa> <aa> ] ");
  std::string first = Damaged("header-misspelt-object-streams");
  first.replace(0, 5, "%PDF-");
  const std::string plain = Damaged("startxref-wrong");
  std::string open = first;
  open.replace(open.rfind("endstream"), 9, "endXtream");
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string bytes = plain;
    return bytes.replace(bytes.find(from), from.size(), to);
  };
  const std::string sound = PlainPdf().Bytes();
  const std::string previous =
      sound.substr(sound.rfind("startxref") + 10, sound.rfind("%%EOF") - sound.rfind("startxref") - 11);
  const std::string update = "trailer\n<< /Size 8 /Root 1 0 R /Prev " + previous + " >>\nstartxref\n1\n%%EOF\n";
  std::string wrongEntry = sound;
  wrongEntry.replace(wrongEntry.find(" 00000 n", wrongEntry.rfind("xref\n0 ") + 60) - 3, 3, "999");
  const std::string endLeadsBack = sound.substr(0, sound.rfind("startxref") + 10) + previous + "\n%%EOF\n";
  std::string inString = changed("/Kids [ 3 0 R ]", "/Kids [ 8 0 R ]");
  inString.insert(inString.find("/StructTreeRoot"), "/Note (\n8 0 obj\n<< /Type /Page /Parent 2 0 R >>\nendobj\n) ");
  const std::string unended("x\1\0\0\1\xFF\xFE of 256 bytes", 20);
  const std::string deflated("x\1\0\x10\0\xEF\xFF of 16 bytes", 19);
  std::string missed = ReadText(QUICK_SAMPLES "/xref-stream-lf.pdf");
  const std::size_t page = missed.find("3 0 obj\n<< /");
  missed.replace(page, 12, "1\n3 0 obj<</").replace(missed.find(">> >>", page), 5, ">>   ");
  const struct {
    const char* what;
    const char* why;
    std::string bytes;
  } rows[] = {
      {"encrypted in parts", "the file is made of parts that are encrypted differently",
       plain + ReadText("encrypted.pdf") + std::string(2048, ' ')},
      {"an encryption dictionary whose number is damaged", "the encryption dictionary is not found", undecrypted},
      {"an encryption dictionary in an open stream, bytes before the header", "the encryption dictionary is damaged",
       encryptionInStream},
      {"a damaged object to which a cross-reference stream does not lead", "object 3 is damaged", missed},
      {"two documents", "the file holds two documents", plain + plain},
      {"two documents, the end of the second leads to the first", "the file holds two documents",
       wrongEntry + endLeadsBack},
      {"an update that is cut off", "an update is cut off, and the file before it is damaged",
       plain + "3 0 obj\n<< /Type /Page /Parent 2 0 R >>\nendobj\n9 0 obj\n<< /Length 99 >>\nstream\nBT"},
      {"an update without its end", "an update is cut off, and the file before it is damaged",
       plain + "3 0 obj\n<< /Type /Page /Parent 2 0 R >>\nendobj\n"},
      {"an update of a page that is damaged", "an update is damaged",
       PlainPdf().Bytes() +
           "3 0 obj\n<< /Type /Page /Parent 2 0 R <p>HTTP/1.1 200 "
           "OK</p><p>HTTP/1.1 200 OK</p> /MediaBox [ 0 0 9 9 ] >>\nendobj\n" +
           update},
      {"two documents, no header in the first kilobyte", "the file holds two documents",
       std::string(1100, '%') + '\n' + plain + plain},
      {"two trailers, one without identifier", "the file is made of parts of several documents",
       plain + "trailer << /Root 7 0 R >>\n"},
      {"an object stream", "an object stream cannot be read", unreadable},
      {"an object stream with a filter of no standard", "an object stream cannot be read", unknown},
      {"a damaged object in an object stream", "an object stream is damaged",
       plain +
           "\n9 0 obj\n<< /Type /ObjStm /N 1 /First 4 /Length 16 >>\nstream\n8 0 << /FT ] >> \nendstream\nendobj\n"},
      {"an object stream without a filter that became longer", "an object stream is damaged",
       plain + "\n9 0 obj\n<< /Type /ObjStm /N 2 /First 9 /Length 22 >>\nstream\n8 0 10 6 (one)  (longer) "
               "\nendstream\nendobj\n"},
      {"an object stream without its end", "an object stream is damaged",
       plain + "\n9 0 obj\n<< /Type /ObjStm /N 2 /First 9 /Length 99 >>\nstream\n8 0 10 7 (one) \nendobj\n"},
      {"an object stream with the number of an object in it", "an object stream is damaged", renamed},
      {"an object stream after the table of a file that has none", "an object stream is of another document",
       plain + "\n9 0 obj\n<< /Type /ObjStm /N 1 /First 4 /Length 9 >>\nstream\n5 0 null\nendstream\nendobj\n"},
      {"an object stream with the number of a stream", "an object stream is of another document",
       streams + "\n10 0 obj\n<< /Type /ObjStm /N 1 /First 4 /Length 9 >>\nstream\n4 0 null\nendstream\nendobj\n"},
      {"an object that has another version", "object 5 has several versions, and one of them is damaged",
       plain + "\n5 0 obj\n<< /BaseFont ] >>\nendobj\nstartxref\n1\n" + std::string(2048, ' ')},
      {"a page that has another version, of which a key has no value",
       "object 3 has several versions, and one of them is damaged",
       plain + "3 0 obj\n<< /Type /Page/Page /Parent 2 0 R >>\nendobj\nstartxref\n1\n" + std::string(2048, ' ')},
      {"an object in an object stream that has another version, of which a key has no value",
       "object 3 has several versions, and one of them is damaged",
       streams + "\n3 0 obj\n<< /Type /Page/Page /Parent 2 0 R >>\nendobj\n" + std::string(2048, ' ')},
      {"pages of another document after the end", "objects of another document follow the end of the file",
       PlainPdf().Bytes() + "3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 9 9 ] >>\nendobj\n" +
           std::string(2048, ' ')},
      {"the number of a missing page after the end, bytes before the header",
       "objects of another document follow the end of the file",
       "junk\n" + PlainPdf().Bytes() + "3 0 obj\nnull\nendobj\n" + std::string(2000, ' ')},
      {"two documents, bytes before the header, the ends lead to the same place", "the file holds two documents",
       "junk\n" + sound + sound},
      {"the same with an encrypted one between them", "the file is made of parts that are encrypted differently",
       "junk\n" + sound + ReadText("encrypted.pdf") + sound},
      {"bytes before a damaged header", "the header is damaged", "junk\n" + PlainPdf().Bytes().replace(5, 1, "-")},
      {"the beginning of a header at the end", "the header is damaged",
       PlainPdf().Bytes().replace(0, 9, "") + std::string(100, ' ') + "%PDF"},
      {"two documents, an open stream between them", "the file holds two documents", open + plain},
      {"an object of which another version is in an open trailer",
       "object 5 has several versions, and one of them is damaged",
       changed("<2233> ] >>", "<22\n5 0 obj\n<< /Wrong /Font >>\nendobj\n> ]\n")},
      {"an object of which another version is before a stream that holds it",
       "object 4 has several versions, and one of them is damaged",
       changed("1 0 obj", "4 0 obj\nnull\nendobj\n9 0 obj\n<< /Length 9999 >>\nstream\n1 0 obj")},
      {"an object of which another version is in an array that holds objects",
       "object 2 has several versions, and one of them is damaged",
       changed("200 100 ]",
               "200\n8 0 obj\n<< >>\nendobj\n2 0 obj\n<< /Type /Pages /Kids [ ] /Count 0 >>\nendobj\n100 ]")},
      {"an object of which another version is in a stream without an end",
       "object 5 has several versions, and one of them is damaged",
       changed("(Hello) Tj", "(Hello) endobj\n5 0 obj\n<< /Wrong /Font >>\nendobj\n")},
      {"a page with the next free number that one reader finds in a string",
       "another way to repair the file finds other objects", inString},
      {"a key that some readers read otherwise", "the encryption dictionary is damaged", verticalTab},
      {"a page with the number of the page tree in the middle of a line",
       "object 2 has several versions, and one of them is damaged", changed("3 0 obj", "> /V 2  0 obj")},
      {"a font of which one reader finds another version in a string",
       "another way to repair the file finds other objects",
       changed("(Value)", "(\n5 0 obj\n<< /Type /Page >>\nendobj\n)")},
      {"an encryption dictionary whose key in the trailer is lost", "the encryption dictionary is damaged", lostKey},
      {"an encryption dictionary that no trailer mentions", "the encryption dictionary is damaged",
       changed("1 0 obj", stray + "endobj\n1 0 obj")},
      {"an encryption dictionary without a key", "the encryption dictionary is damaged", withoutKey},
      {"an encryption key of one byte", "the encryption dictionary is damaged", shortKey},
      {"an owner key of which bytes are missing", "the encryption dictionary is damaged", shortOwnerKey},
      {"an encryption key that is too long", "the encryption dictionary is damaged", longKey},
      {"an encrypted object stream, bytes before the header", "the pages are not found", "junk\n" + zeroed},
      {"a cross-reference stream that is a page", "the pages are damaged",
       changed("<< /Type /Page ",
               "<< /Type /XRef /W [ 0 0 0 ] >>\nstream\nendstream\nendobj\n9 0 obj\n<< /Type /Page ")},
      {"a stream with a wrong length and a damaged dictionary", "object 4 is damaged",
       changed("/Length ", "/Length/Length ")},
      {"a page tree whose number zero bytes made of another",
       "object 2 has several versions, and one of them is damaged",
       changed("5 0 obj", "1" + std::string(9, '\0') + "2 0 obj")},
      {"a font that is cut off before the end that its length leads to", "the font in object 9 is damaged",
       changed("1 0 obj", "9 0 obj\n<< /Subtype /Type1C /Filter /FlateDecode /Length 99 >>\nstream\n" + deflated +
                              "\nendstream\nendobj\n1 0 obj")},
      {"a stream without an end that inflates to a part of another object, too", "object 9 is damaged",
       changed("1 0 obj", "9 0 obj\n<< /Filter /FlateDecode /Length 9 >>\nstream\n" + unended + "\nendobj\n1 0 obj")},
      {"a keyword in place of an object", "object 6 is damaged", changed("6 0 obj", "6 0 obj obj")},
      {"the catalog", "the catalog is damaged", changed("/StructTreeRoot 7 0 R", "/Lang /StructTreeRoot 7 0 R")},
      {"the catalog of a sound file", "the pages are not found", unnamed},
      {"two documents, the page tree of one damaged", "objects of another document follow the end of the file",
       first + damagedPages},
      {"a catalog in place of which a sound file names a page",
       "the page tree counts more pages than there are objects", pageAsCatalog},
      {"no header, an object of which another version is cut off",
       "object 2 has several versions, and one of them is damaged",
       PlainPdf().Bytes().replace(0, 8, 8, '\0') + "2 0 obj\n<< /Ty"},
      {"a page count that readers refuse", "the page tree counts more pages than there are objects",
       changed("/Count 1", "/Count 999")},
      {"a damaged page count that readers refuse", "the page tree counts more pages than there are objects",
       changed("/Count 1", "/Count 99bf")},
  };
  for (const auto& [what, why, bytes] : rows) {
    SCOPED_TRACE(what);
    EXPECT_FALSE(Load("damaged.pdf", bytes));
    EXPECT_EQ(Narrow(library_.GetInformation(1009)), why);
    EXPECT_EQ(library_.LastErrorCode(), kErrorDamaged);
  }
}

// At opening only so many rows of a cross-reference stream are counted.
TEST_F(RepairTest, RowsMissingFromALongXrefStreamLoseNothing) {
  for (const XrefKind kind : {XrefKind::kStream, XrefKind::kObjectStreams}) {
    std::string bytes = LargePdf(kind, 20000, false);
    bytes[bytes.rfind("/Size 2") + 7] = '9';
    ASSERT_TRUE(Load("damaged.pdf", bytes)) << library_.LastErrorCode();
    ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
    EXPECT_EQ(library_.GetInformation(1004), L"incremental");
    for (const char* const ask :
         {"qpdf --show-npages $FILE", "pdfinfo $FILE", "mutool show -g $FILE trailer/Root/Pages/Count"}) {
      const auto pages = [&](const char* file) {
        return RunTool("FILE=" + std::string(file) + "; { " + ask + "; } 2>&1 | grep -aoE '^(Pages: +)?20000$'").output;
      };
      const std::string before = pages("damaged.pdf");
      EXPECT_TRUE(before.empty() || pages("out.pdf") == before) << ask;
    }
    EXPECT_NE(RunTool("mutool show out.pdf trailer/Root/URI/Base 2>&1").output.find("example.org"), std::string::npos);
  }
}

TEST_F(RepairTest, DamagedObjectsAreNotRewritten) {
  std::string bytes = Damaged("catalog-in-trailer");
  bytes.replace(bytes.find("/BaseFont"), 1, "]");
  ASSERT_TRUE(Load("source.pdf", bytes));
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  EXPECT_EQ(library_.SaveToFile(L"out.pdf"), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorDamaged);
}

// As under "ulimit -s 64".
TEST_F(RepairTest, NeedsLittleStack) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs more";
#endif
  const auto save = [](void* library) -> void* {
    auto& engine = *static_cast<HalvexPDFLibraryCPDylibCPP1311*>(library);
    const std::wstring file = Wide(DAMAGED_FILES "/startxref-wrong-object-streams.pdf");
    const bool saved =
        engine.LoadFromFile(file, L"") == 1 && engine.SetBaseURL(kUrl) == 1 && engine.SaveToFile(L"out.pdf") == 1;
    return saved ? library : nullptr;
  };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, save, &library_), 0);
  pthread_attr_destroy(&attributes);
  void* saved = nullptr;
  ASSERT_EQ(pthread_join(thread, &saved), 0);
  EXPECT_EQ(saved, &library_);
}

// Only so many bytes of a password count (ISO 32000-2, 7.6.4.3.3).
TEST_F(RepairTest, LongPasswordsOpen) {
  const std::string counted(127, 'p');
  ASSERT_EQ(RunTool("qpdf --encrypt " + counted + " o 256 -- " DAMAGED_FILES "/startxref-wrong.pdf long.pdf").status,
            3);
  EXPECT_EQ(library_.LoadFromFile(L"long.pdf", Wide(counted + "and more")), 1);
  EXPECT_EQ(library_.LoadFromFile(L"long.pdf", Wide(counted.substr(1))), 0);
}

TEST_F(RepairTest, NumbersInMasseTakeLimitedMemory) {
  std::string numbers = "/Numbers [ ";
  for (int i = 0; i < 7000000; ++i) numbers += "1 ";
  PlainPdf large;
  large.catalogEntries = numbers + "]";
  WriteFile("large.pdf", WithBrokenXref(large.Bytes()));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(library_.LoadFromFile(L"large.pdf", L"") == 0 ? library_.LastErrorCode() : 0);
  int status = -1;
  rusage usage = {};
  ASSERT_EQ(wait4(child, &status, 0, &usage), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), kErrorOutOfMemory);
#ifndef __SANITIZE_ADDRESS__
  EXPECT_LT(usage.ru_maxrss, 1024 * 1024);
#endif
}
