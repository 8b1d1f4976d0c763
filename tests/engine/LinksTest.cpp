// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <filesystem>

#include "pdflib/LibraryAnnotationTags.h"
#include "pdflib/LibraryInformationKeys.h"
#include "tests/engine/EngineFixture.h"
#include "utils/DocumentLinks.h"

namespace {

// One line for each link: "a1 uri" for an annotation of page 1, "f1" for a field's, "o0" for an outline item's.
std::string Dump(HalvexPDFLibraryCPDylibCPP1311& library) {
  std::string text;
  const int error = VisitDocumentLinks(library, [&](const DocumentLink& link) {
    text += "aof"[static_cast<int>(link.kind)] + std::to_string(link.page) + ' ' + link.uri.toStdString() + '\n';
  });
  EXPECT_EQ(error, 0);
  return text;
}

std::string Uri(const std::string& text) {
  return "<< /S /URI /URI (" + text + ") >>";
}

struct Case {
  const char* name;
  PlainPdf pdf;  // the objects in `more` are 4, 5 and so on
  const char* links;
};

const Case kCases[] = {
    {"direct annotation and action",
     {"", "/Annots [ << /Subtype /Link /A << /S /URI /URI (x) >> >> ]", "", {}},
     "a1 x\n"},
    {"indirect at every step",
     {"",
      "/Annots 4 0 R",
      "",
      {"[ 5 0 R ]", "<< /Subtype 8 0 R /A 6 0 R >>", "<< /S 9 0 R /URI 7 0 R >>", "(x)", "/Link", "/URI"}},
     "a1 x\n"},
    {"strings in their encodings",
     {"",
      "/Annots [ << /A << /S /URI /URI (caf\\351 \\240) >> >> << /A << /S /URI /URI <FEFF0063> >> >> "
      "<< /A << /S /URI /URI <FFFE6300> >> >> << /A << /S /URI /URI <EFBBBFC3A9> >> >> "
      "<< /A << /S /URI /URI (\xC3\xA9\\(\\)) >> >> << /A << /S /URI /URI <6> >> >> << /A << /S /URI /URI () >> >> ]",
      "",
      {}},
     "a1 caf\xC3\xA9 \xE2\x82\xAC\na1 c\na1 c\na1 \xC3\xA9\na1 \xC3\xA9()\na1 `\na1 \n"},
    {"URIs that are no strings",
     {"",
      "/Annots [ << /A << /S /URI >> >> << /A << /S /URI /URI 5 >> >> << /A << /S /URI /URI /x >> >> "
      "<< /A << /S /URI /URI 4 0 R >> >> << /A << /S /URI /URI 9 0 R >> >> << /A << /S /URI /URI (x) >> >> ]",
      "",
      {"[ (y) ]"}},
     "a1 x\n"},
    {"additional actions",
     {"",
      "/Annots [ << /AA << /E << /S /URI /URI (e) >> /U 4 0 R >> >> "
      "<< /A << /S /URI /URI (a) >> /AA << /X 4 0 R >> >> ]",
      "",
      {Uri("u")}},
     "a1 e\na1 u\na1 a\na1 u\n"},
    {"following actions",
     {"",
      "/Annots [ << /A 4 0 R >> ]",
      "",
      {"<< /S /GoTo /Next [ 5 0 R << /S /URI /URI (c) >> 6 0 R 4 0 R ] >>", "<< /S /URI /URI (a) /Next 7 0 R >>",
       "<< /S /URI /URI (d) /Next 6 0 R >>", "<< /S /URI /URI (b) >>"}},
     "a1 a\na1 b\na1 c\na1 d\n"},
    {"what is no action or annotation",
     {"",
      "/Annots [ null 1 (x) 4 0 R 99 0 R 5 0 R 0 0 R << /A (x) >> << /A << /S (URI) /URI (x) >> >> << /A 6 0 R >> "
      "<< /A << /S /Named /URI (x) >> >> << /A << /S /URI /URI (y) >> >> ]",
      "",
      {"4 0 R", "<< /Length 0 >>\nstream\n\nendstream", "6 0 R"}},
     "a1 y\n"},
    {"keys that are there twice, or escaped",
     {"", "/Annots [ << /A null /#41 << /S /GoTo /S /U#52I /URI (x) /URI (y) >> >> ]", "", {}},
     "a1 y\n"},
    {"a dictionary with a value too many",
     {"", "/Annots [ 4 0 R ]", "", {"<< /A << /S /URI /URI (x) >> 1 /Subtype /Link >>"}},
     "a1 x\n"},
    {"fields: of a page, of none, in groups, and their widgets",
     {"/AcroForm << /Fields [ 4 0 R 5 0 R 7 0 R ] >>",
      "/Annots [ 4 0 R 9 0 R ]",
      "",
      {"<< /T (a) /Subtype /Widget /A << /S /URI /URI (own) >> >>", "<< /T (b) /Kids [ 6 0 R 5 0 R ] >>",
       "<< /T (c) /AA << /K << /S /URI /URI (key) >> >> >>", "<< /T (d) /Kids [ 8 0 R 9 0 R ] >>",
       "<< /Subtype /Widget /A << /S /URI /URI (apart) >> >>", "<< /Subtype /Widget /A << /S /URI /URI (on) >> >>"}},
     "f1 own\nf1 on\nf0 key\nf0 apart\n"},
    {"outlines with loops",
     {"/Outlines 4 0 R",
      "",
      "",
      {"<< /First 5 0 R >>", "<< /Title (1) /A << /S /URI /URI (1) >> /First 6 0 R /Next 8 0 R >>",
       "<< /Title (1.1) /A 9 0 R /Next 7 0 R >>", "<< /Title (1.2) /First 5 0 R /Next 6 0 R >>",
       "<< /Title (2) /A << /S /URI /URI (2) >> /Next 8 0 R >>", Uri("1.1")}},
     "o0 1\no0 1.1\no0 2\n"},
};

class LinksTest : public EngineFixture {
 protected:
  std::string LinksOf(const std::string& file, const std::wstring& password = {}) {
    EXPECT_EQ(library_.LoadFromFile(Wide(file), password), 1) << file;
    std::string links = Dump(library_);
    library_.RemoveDocument(library_.SelectedDocument());
    return links;
  }
};

TEST_F(LinksTest, AreTheSameForBothReadersInSamples) {
  int links = 0;
  for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
    if (entry.path().extension() != ".pdf" || entry.path().stem() == "not-a-pdf") continue;
    const std::string file = entry.path().string();
    const std::wstring password = entry.path().stem() == "encrypted-user-password" ? L"tide" : L"";
    SCOPED_TRACE(file);
    const std::string own = LinksOf(file, password);
    links += static_cast<int>(std::count(own.begin(), own.end(), '\n'));
    WriteFile("parser.pdf", '\n' + ReadText(file));  // bytes before the header: the full parser reads it
    EXPECT_EQ(LinksOf("parser.pdf", password), own);
  }
  EXPECT_GT(links, 0);
}

TEST_F(LinksTest, OfSoundFilesNeedNoBackend) {
  std::filesystem::copy(HALVEXENGINE_FILE, "alone.dylib");
  HalvexPDFLibraryCPDylibCPP1311 alone(Wide(std::filesystem::absolute("alone.dylib")));
  WriteFile("plain.pdf", kCases[0].pdf.Bytes());
  ASSERT_EQ(RunTool("qpdf --object-streams=generate plain.pdf streams.pdf").status, 0);
  for (const wchar_t* const file : {L"plain.pdf", L"streams.pdf"}) {
    ASSERT_EQ(alone.LoadFromFile(file, L""), 1);
    EXPECT_EQ(Dump(alone), kCases[0].links);
    EXPECT_EQ(alone.SetActionURL(alone.GetAnnotActionID(1), L"y"), 1);
    EXPECT_EQ(alone.SaveToFile(L"changed.pdf"), 1) << alone.LastErrorCode();
    EXPECT_EQ(LinksOf("changed.pdf"), "a1 y\n");
    EXPECT_TRUE(Sound("changed.pdf"));
  }
}

TEST_F(LinksTest, HaveConsecutiveActionsUpToOneThatIsNone) {
  ASSERT_TRUE(
      Load("a.pdf",
           PlainPdf{"", "/Annots [ << /A 4 0 R >> << /A 5 0 R >> << >> ]", "", {"<< /S /GoTo /Next 5 0 R >>", Uri("x")}}
               .Bytes()));
  const int first = library_.GetAnnotActionID(1);
  EXPECT_EQ(library_.GetActionType(first), L"GoTo");
  EXPECT_EQ(library_.GetActionURL(first), L"");
  EXPECT_EQ(library_.GetActionURL(first + 1), L"x");
  EXPECT_EQ(library_.GetActionType(first + 2), L"");
  EXPECT_EQ(library_.GetActionURL(library_.GetAnnotActionID(2)), L"x");
  EXPECT_EQ(library_.GetAnnotActionID(1), first);
  EXPECT_EQ(library_.GetAnnotActionID(3), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNone);
  // An action that two annotations share changes for both.
  EXPECT_EQ(library_.SetActionURL(first + 1, L"y"), 1);
  EXPECT_EQ(library_.GetActionURL(library_.GetAnnotActionID(2)), L"y");
  for (const int index : {-1, 0, 4}) {
    EXPECT_EQ(library_.GetAnnotActionID(index), 0);
    EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
  }
  for (const int action : {0, -1, first, first + 2, 1 << 30}) {
    EXPECT_EQ(library_.SetActionURL(action, L"z"), 0);
    EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
  }
}

TEST_F(LinksTest, HaveAllActionsOfAChainEachOnce) {
  constexpr int kActions = 3000;  // each leads to the next one, and to an array of all
  PlainPdf pdf{"", "/Annots [ << /A 5 0 R >> << /A 6 0 R >> ]", "", {"["}};
  for (int number = 5; number < 5 + kActions; ++number) {
    pdf.more[0] += ' ' + std::to_string(number) + " 0 R";
    pdf.more.push_back("<< /S /URI /URI (x) /Next " + std::string(number % 2 == 0 ? "4 0 R >>" : "[ ") +
                       (number % 2 == 0 ? "" : std::to_string(number + 1) + " 0 R 4 0 R ] >>"));
  }
  pdf.more[0] += " ]";
  ASSERT_TRUE(Load("a.pdf", pdf.Bytes()));
  const std::string links = Dump(library_);
  EXPECT_EQ(std::count(links.begin(), links.end(), '\n'), 2 * kActions);
}

TEST_F(LinksTest, WithoutAUriAreReportedAndCanBeSet) {
  ASSERT_TRUE(Load("a.pdf", PlainPdf{"", "/Annots [ << /A << /S /URI /URI 5 >> >> ]", "", {}}.Bytes()));
  const int action = library_.GetAnnotActionID(1);
  EXPECT_EQ(library_.GetActionURL(action), L"");
  EXPECT_EQ(library_.LastErrorCode(), kErrorDamaged);
  EXPECT_EQ(library_.SetActionURL(action, L"x"), 1);
  EXPECT_EQ(Dump(library_), "a1 x\n");
}

TEST_F(LinksTest, AreReadAndSetInEveryFormOfFile) {
  const struct {
    const char* make;
    const wchar_t* password;
  } forms[] = {
      {"cp plain.pdf source.pdf", L""},
      {"(echo; cat plain.pdf) > source.pdf", L""},  // bytes before the header: the full parser reads it
      {"qpdf --object-streams=generate plain.pdf source.pdf", L""},
      {"qpdf --encrypt user owner 256 -- plain.pdf source.pdf", L"user"},
      {"qpdf --allow-weak-crypto --object-streams=generate --encrypt user owner 128 -- plain.pdf source.pdf", L"user"}};
  for (const auto& form : forms) {
    for (const Case& row : kCases) {
      SCOPED_TRACE(std::string(form.make) + ": " + row.name);
      WriteFile("plain.pdf", row.pdf.Bytes());
      RunTool(form.make);
      ASSERT_EQ(library_.LoadFromFile(L"source.pdf", form.password), 1);
      EXPECT_EQ(Dump(library_), row.links);
      VisitDocumentLinks(library_, [&](const DocumentLink& link) {
        EXPECT_EQ(SetDocumentLink(library_, link, "https://example.org/(new)?" + link.uri), 0);
      });
      const std::string after = Dump(library_);
      EXPECT_NE(after, row.links);
      EXPECT_EQ(library_.GetInformation(1000), L"incremental");
      ASSERT_EQ(library_.SaveToFile(L"changed.pdf"), 1) << library_.LastErrorCode();
      EXPECT_EQ(LinksOf("changed.pdf", form.password), after);
      if (Sound("source.pdf", "--password=user")) {
        EXPECT_TRUE(Sound("changed.pdf", "--password=user"));
      }
      const std::string source = ReadText("source.pdf");
      EXPECT_EQ(ReadText("changed.pdf").substr(0, source.size()), source);
      library_.RemoveDocument(library_.SelectedDocument());
    }
  }
}

// What viewers read differently, in UTF-16 or PDFDocEncoding, becomes ASCII although the text is the same.
TEST_F(LinksTest, SetToTheBytesOfTheFileAreNoChange) {
  WriteFile("source.pdf", kCases[2].pdf.Bytes());
  ASSERT_EQ(library_.LoadFromFile(L"source.pdf", L""), 1);
  const struct {
    int annotation;
    const wchar_t* uri;
    std::wstring bytes;
    const wchar_t* mode;
  } rows[] = {{6, L"`", L"`", L"unchanged"},
              {7, L"", L"", L"unchanged"},
              {2, L"c", {L"\u00FE\u00FF\0c", 4}, L"incremental"},
              {1, L"caf\u00E9 \u20AC", L"caf\u00E9 \u00A0", L"incremental"}};
  for (const auto& row : rows) {
    const int action = library_.GetAnnotActionID(row.annotation);
    EXPECT_EQ(library_.GetActionURL(action), row.uri);
    EXPECT_EQ(library_.GetInformation(kInformationActionUriBytes + action), row.bytes) << row.annotation;
    EXPECT_EQ(library_.SetActionURL(action, L"other"), 1);
    EXPECT_EQ(library_.SetActionURL(action, row.uri), 1);
    EXPECT_EQ(library_.GetInformation(kInformationSaveMode), row.mode) << row.annotation;
  }
}

TEST_F(LinksTest, AndBaseUrlShareTheCatalog) {
  ASSERT_TRUE(Load("a.pdf",
                   PlainPdf{"/AcroForm << /Fields [ << /T (a) /A << /S /URI /URI (x) >> >> ] >>", "", "", {}}.Bytes()));
  const int action = library_.GetFormFieldActionID(1, L"A");
  EXPECT_EQ(library_.SetActionURL(action, L"y"), 1);
  EXPECT_EQ(library_.SetBaseURL(L"https://example.org/"), 1);
  EXPECT_EQ(library_.SetActionURL(action, L"z"), 1);
  EXPECT_EQ(library_.SaveToFile(L"a.pdf"), 1);
  EXPECT_EQ(library_.GetBaseURL(), L"https://example.org/");
  EXPECT_EQ(Dump(library_), "f0 z\n");
}

TEST_F(LinksTest, OfOutlineItemsReplaceWhatTheyDid) {
  ASSERT_TRUE(Load("a.pdf", PlainPdf{"/Outlines 4 0 R",
                                     "",
                                     "",
                                     {"<< /First 5 0 R >>", "<< /Title <FEFF00E9> /Dest [ 3 0 R /Fit ] /Next 6 0 R >>",
                                      "<< /Title (b) /A << /S /GoTo /D [ 3 0 R /Fit ] >> /Next 7 0 R >>",
                                      "<< /Title (c) /A << /S /URI /URI (c) >> >>"}}
                                .Bytes()));
  ASSERT_EQ(library_.OutlineCount(), 3);
  EXPECT_EQ(library_.OutlineTitle(library_.GetOutlineID(1)), L"\u00E9");
  EXPECT_EQ(library_.GetOutlineWebLink(2), L"");
  const int old = library_.GetOutlineActionID(2);
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(library_.SetOutlineWebLink(i, L"x" + std::to_wstring(i)), 1);
  EXPECT_EQ(library_.GetActionType(old), L"");
  EXPECT_EQ(library_.SaveToFile(L"a.pdf"), 1);
  EXPECT_EQ(Dump(library_), "o0 x1\no0 x2\no0 x3\n");
  EXPECT_EQ(Show("a.pdf", "5").find("/Dest"), std::string::npos);
  EXPECT_EQ(library_.OutlineTitle(4), L"");
  EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
}

TEST_F(LinksTest, HaveSubtypeAndRectangle) {
  ASSERT_TRUE(Load(
      "a.pdf",
      PlainPdf{"", "/Annots [ << /Subtype /Link /Rect [ +30 4 0 R -.5 20. ] >> << /Rect [ 1 2 3 ] >> ]", "", {"40"}}
          .Bytes()));
  EXPECT_EQ(library_.AnnotationCount(), 2);
  EXPECT_EQ(library_.GetAnnotStrProperty(1, kAnnotationSubtype), L"Link");
  EXPECT_EQ(library_.GetAnnotDblProperty(1, kAnnotationLeft), -0.5);
  EXPECT_EQ(library_.GetAnnotDblProperty(1, kAnnotationBottom), 20);
  EXPECT_EQ(library_.GetAnnotDblProperty(1, kAnnotationRight), 30);
  EXPECT_EQ(library_.GetAnnotDblProperty(1, kAnnotationTop), 40);
  EXPECT_EQ(library_.GetAnnotDblProperty(2, kAnnotationTop), 0);
  EXPECT_EQ(library_.GetAnnotDblProperty(1, 7), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
}

TEST_F(LinksTest, ComeWithFactsAboutTheDocument) {
  const PlainPdf pdf{
      "/MarkInfo << /Marked true >> /PageMode /UseThumbs /PageLayout 4 0 R /Names << /EmbeddedFiles << "
      "/Kids [ 5 0 R 5 0 R << /Names [ (c) null ] >> ] >> >>",
      "",
      "/ID [ <00FF> (b) ]",
      {"/TwoPageLeft", "<< /Names [ (a) null (b) null ] /Kids [ 5 0 R ] >>"}};
  ASSERT_TRUE(Load("a.pdf", pdf.Bytes()));
  EXPECT_EQ(library_.IsTaggedPDF(), 1);
  EXPECT_EQ(library_.GetPageMode(), 2);
  EXPECT_EQ(library_.GetPageLayout(), 4);
  EXPECT_EQ(library_.EmbeddedFileCount(), 3);
  EXPECT_EQ(library_.GetDocumentIdentifier(1, 0), L"00ff");
  EXPECT_EQ(library_.GetDocumentIdentifier(2, 0), L"62");
  EXPECT_EQ(library_.EncryptionAlgorithm() + library_.EncryptionStrength(), 0);
  const struct {
    const char* options;
    int algorithm;
    int bits;
  } rows[] = {{"40", 1, 40}, {"128 --use-aes=n", 1, 128}, {"128 --use-aes=y", 2, 128}, {"256", 2, 256}};
  for (const auto& row : rows) {
    RunTool(std::string("qpdf --allow-weak-crypto --encrypt '' owner ") + row.options + " -- a.pdf encrypted.pdf");
    ASSERT_EQ(library_.LoadFromFile(L"encrypted.pdf", L""), 1);
    EXPECT_EQ(library_.EncryptionAlgorithm(), row.algorithm) << row.options;
    EXPECT_EQ(library_.EncryptionStrength(), row.bits) << row.options;
  }
}

}  // namespace
