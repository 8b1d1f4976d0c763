// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/links/LinkCheck.h"
#include "tests/support/ProgramRun.h"
#include "utils/LinkTarget.h"

namespace {

// A link annotation whose URI is this string, as PDF files write it.
QByteArray Annotation(const QByteArray& string) {
  return "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI" + string + ">>>>";
}

QByteArray Annotations(const QByteArrayList& uris) {
  QByteArray annotations;
  for (const QByteArray& uri : uris) annotations += Annotation('(' + uri + ')');
  return annotations;
}

// A PDF with a link annotation for each URI, an outline item and a form field that is on no page, with a link each.
// `catalog` holds further entries of the catalog.
QByteArray LinksPdf(const QByteArray& catalog, const QByteArrayList& uris) {
  const auto action = [](const QByteArray& uri) { return "/A<</S/URI/URI(" + uri + ")>>"; };
  return MakePdf("/Outlines 4 0 R/AcroForm<</Fields[6 0 R]>>" + catalog,
                 {"<</Type/Outlines/First 5 0 R/Last 5 0 R/Count 1>>",
                  "<</Title(t)/Parent 4 0 R" + action("o.html") + ">>", "<</FT/Tx/T(f)" + action("f.html") + ">>"},
                 "/Annots[" + Annotations(uris) + ']');
}

QByteArray Base(const QByteArray& url) {
  return "/URI<</Base(" + url + ")>>";
}

QList<QJsonObject> LinksIn(const QByteArray& lines) {
  QList<QJsonObject> links;
  for (const QByteArray& line : lines.split('\n')) {
    if (!line.isEmpty()) links += QJsonDocument::fromJson(line).object();
  }
  return links;
}

QList<QJsonObject> Links(const QStringList& arguments) {
  return LinksIn(RunProgram(QStringList{"links", "--json", "--all"} + arguments).out);
}

QStringList UrisOf(const QList<QJsonObject>& links) {
  QStringList uris;
  for (const QJsonObject& link : links) uris += link["uri"].toString();
  return uris;
}

QStringList Uris(const QString& file) {
  return UrisOf(Links({file}));
}

TEST(Links, JsonHasTheseKeysInThisOrder) {
  WriteFile("a.pdf", LinksPdf(Base("https://e.org/m"), {"c.html"}));
  const ProgramResult result = RunProgram({"links", "--json", "a.pdf"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out.split('\n').value(0),
            R"({"file":"a.pdf","page":1,"kind":"annotation","uri":"c.html","target":"https://e.org/c.html",)"
            R"("viewers":{"pdfjs":"https://e.org/c.html","pdfium":"https://e.org/mc.html",)"
            R"("mupdf":"https://e.org/mc.html","poppler":"https://e.org/m/c.html"},"agree":false})");
  EXPECT_EQ(RunProgram({"links", "--csv", "a.pdf"}).out.split('\n').value(1),
            "a.pdf,1,annotation,c.html,https://e.org/c.html,https://e.org/c.html,https://e.org/mc.html,"
            "https://e.org/mc.html,https://e.org/m/c.html,false\r");
}

// 40 MiB of answer.
TEST(Links, TheAnswerOfOneFileIsNotHeldInMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer's allocator ends the process instead of reporting";
#endif
  QByteArrayList uris;
  for (int i = 0; i < 2000; ++i) uris += "c.html";
  WriteFile("a.pdf", LinksPdf(Base("https://e.org/" + QByteArray(4000, 'b') + '/'), uris));
  EXPECT_EQ(RunProgram({"links", "--json", "--memory", "30", "a.pdf"}).code, 0);
}

TEST(Links, OutlinesAndFieldsHaveNoPageAndWithoutABaseThereIsNoTarget) {
  WriteFile("a.pdf", LinksPdf("", {"http://e.org/x"}));
  const QList<QJsonObject> links = Links({"a.pdf"});
  ASSERT_EQ(links.size(), 3);
  const std::pair<const char*, const char*> rows[] = {
      {"annotation", "http://e.org/x"}, {"outline", "o.html"}, {"field", "f.html"}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(links[i]["kind"].toString(), rows[i].first);
    EXPECT_EQ(links[i]["uri"].toString(), rows[i].second);
    EXPECT_EQ(links[i]["page"], i == 0 ? QJsonValue(1) : QJsonValue());
    EXPECT_EQ(links[i]["target"], i == 0 ? QJsonValue("http://e.org/x") : QJsonValue());
    EXPECT_EQ(links[i]["viewers"].toObject()["pdfjs"].isNull(), i > 0);
    EXPECT_EQ(links[i]["agree"].toBool(), i == 0);
  }
  EXPECT_EQ(Links({"--base", "https://n.org/", "a.pdf"})[1]["target"].toString(), "https://n.org/o.html");
}

TEST(Links, ExitCodes) {
  WriteFile("good.pdf", LinksPdf(Base("https://e.org/"), {"a", "../b", "http://other.org"}));
  WriteFile("slash.pdf", LinksPdf(Base("https://e.org/x"), {"a"}));
  WriteFile("none.pdf", LinksPdf("", {}));
  WriteFile("junk.pdf", "junk");
  const struct {
    QStringList arguments;
    int code;
    const char* shown;  // in the output or the error
  } rows[] = {{{"good.pdf", "slash.pdf"}, 0, "8 links in 2 files, 7 relative; viewers disagree on 3 of these\n"},
              {{"--strict", "good.pdf"}, 0, "viewers agree on these\n"},
              {{"--strict", "slash.pdf"}, 1, "! Firefox"},
              {{"--strict", "none.pdf"}, 1, "2 without a base URL"},
              {{"--strict", "--base", "https://e.org/", "none.pdf"}, 0, "https://e.org/o.html"},
              {{"junk.pdf", "good.pdf"}, 1, "junk.pdf: not a PDF"},
              {{"missing.pdf"}, 1, "missing.pdf: no such file"},
              {{"--strict", "--base", "https://e.org/", "junk.pdf", "none.pdf"}, 1, "junk.pdf: not a PDF"},
              {{"--base", "x/", "good.pdf"}, 2, "takes a URL, not 'x/': it has no scheme"},
              {{"--base", "", "good.pdf"}, 0, "file://a\n"},
              {{"--base", "https://a b/", "good.pdf"}, 2, "it has a space"},
              {{"--check", "x", "good.pdf"}, 2, "takes URL=FOLDER, not 'x'"},
              {{"--check", "https://e.org=nowhere", "good.pdf"}, 2, "no folder 'nowhere'"},
              {{"--check", "x=.", "good.pdf"}, 2, "takes a URL, not 'x': it has no scheme"},
              {{"--check", "https://e.org=.", "--all", "good.pdf"}, 2, "'--all' and '--check' exclude each other"},
              {{"--json", "--csv", "good.pdf"}, 2, "'--json' and '--csv' exclude each other"},
              {{}, 2, "No file"}};
  for (const auto& row : rows) {
    const ProgramResult result = RunProgram(QStringList{"links"} + row.arguments);
    EXPECT_EQ(result.code, row.code) << row.arguments.join(' ').toStdString();
    EXPECT_TRUE((result.out + result.err).contains(row.shown)) << (result.out + result.err).toStdString();
    EXPECT_TRUE(row.code != 2 || result.err.count('\n') == 1) << result.err.toStdString();
  }
}

TEST(Links, TheTableIsAligned) {
  const QByteArray longLink = "https://e.org/" + QByteArray(30, 'x');
  WriteFile("a.pdf",
            MakePdf(Base("https://e.org/"), {},
                    "/Annots[" + Annotations({"a", "\xC3\xA4", "../b", longLink}) + Annotation("<FEFF0063>") + ']'));
  EXPECT_EQ(RunProgram({"links", "--all", "a.pdf"}).out,
            "a.pdf: base URL https://e.org/\n"
            "      1  a                                  https://e.org/a\n"
            "      1  \xC3\xA4                                  https://e.org/%C3%A4\n"
            "      1  ../b                               https://e.org/b\n"
            "      1  " +
                longLink +
                "\n"
                "      1  c                                ! Firefox                  https://e.org/%C3%BE%C3%BF%00c\n"
                "                                            Chrome                   https://e.org/\\xFE\\xFF\\x00c\n"
                "                                            MuPDF                    https://e.org/c\n"
                "                                            Poppler                  https://e.org/\\xFE\\xFF\n"
                "5 links in 1 file, 4 relative; viewers disagree on 1 of these\n");
  QDir().mkpath("site");
  WriteFile("site/a", "x");
  EXPECT_EQ(RunProgram({"links", "--check", "https://e.org=site", "a.pdf"}).out,
            "a.pdf: base URL https://e.org/\n"
            "      1  \xC3\xA4                                  missing: https://e.org/%C3%A4\n"
            "      1  ../b                               missing: https://e.org/b\n"
            "      1  " +
                longLink +
                "\n"
                "                                            missing: " +
                longLink +
                "\n"
                "      1  c                                  missing: https://e.org/c\n"
                "5 links in 1 file, 4 relative; viewers disagree on 1 of these; 5 checked, 4 "
                "missing\n");
}

TEST(LinkCheck, LooksInTheFolderAndNeverOutside) {
  QDir().mkpath("site/dir");
  QDir().mkpath("site/empty");
  for (const char* const name : {"site/a b.html", "site/dir/index.html", "secret", "site/\xC3\xA4"})
    WriteFile(name, "x");
  QFile::link(QDir::current().filePath("secret"), "site/out");
  const LinkCheck check("HTTPS://E.org:443/%78=site");
  const struct {
    const char* target;
    int has;  // -1: not below the URL
  } rows[] = {{"https://e.org/x/a%20b.html", 1},
              {"https://e.org/x/a%20b.html?q#f", 1},
              {"https://e.org/x/%c3%a4", 1},
              {"https://e.org/x/dir", 1},
              {"https://e.org/x/dir/", 1},
              {"https://e.org/x/dir//index.html", 1},
              {"HTTPS://E.ORG/x/dir", 1},
              {"https://e.org:443/%78/%64ir", 1},
              {"https://e.org/x/empty", 0},
              {"https://e.org/x", 0},
              {"https://e.org/x/a%20b.html/", 0},
              {"https://e.org/x/..%2fsecret", 0},
              {"https://e.org/x/%2Fetc/passwd", 0},
              {"https://e.org/x/out", 0},
              {"https://e.org/x/a%00", 0},
              {"https://e.org/x/none", 0},
              {"https://e.org/x/%2e%2e/secret", -1},
              {"https://e.org:444/x/dir", -1},
              {"https://e.org/xy/a", -1},
              {"http://e.org/x/a", -1},
              {"https://e.org/X/dir", -1}};
  for (const auto& row : rows) {
    const std::string target = NormalizedLink(row.target).toStdString();
    const bool covered = check.Covers(target).has_value();
    EXPECT_EQ(covered ? static_cast<int>(check.Has(target)) : -1, row.has) << row.target;
  }
  EXPECT_TRUE(LinkCheck("https://e.org/?a=b=site").Covers("https://e.org/?a=b"));
}

TEST(Links, CheckListsWhatIsMissing) {
  QDir().mkpath("site");
  QDir().mkpath("manuals");
  WriteFile("site/here.html", "x");
  WriteFile("manuals/o.html", "x");
  WriteFile("a.pdf",
            LinksPdf(Base("https://e.org/d/"), {"here.html", "gone.html", "HTTPS://E.org:443/%64/away", "/up"}));
  const struct {
    QStringList checks;
    QStringList missing;
    const char* unused;  // URL that the program warns of
  } rows[] = {{{"https://e.org/d/=site"}, {"gone.html", "HTTPS://E.org:443/%64/away", "o.html", "f.html"}, nullptr},
              // Of several URLs the longest counts, in any order; the same one with two folders looks in both.
              {{"https://e.org/d/=manuals", "https://E.org=site"},
               {"here.html", "gone.html", "HTTPS://E.org:443/%64/away", "/up", "f.html"},
               nullptr},
              {{"https://e.org=manuals", "https://e.org/d=site", "https://e.org/d/=manuals"},
               {"gone.html", "HTTPS://E.org:443/%64/away", "/up", "f.html"},
               nullptr},
              {{"https://e.org/dd=site"}, {}, "No link leads to 'https://e.org/dd' or below."}};
  for (const auto& row : rows) {
    QStringList arguments{"links", "--json", "a.pdf"};
    for (const QString& check : row.checks) arguments += QStringList{"--check", check};
    const ProgramResult result = RunProgram(arguments);
    EXPECT_EQ(result.code, row.missing.isEmpty() ? 0 : 1);
    EXPECT_EQ(UrisOf(LinksIn(result.out)), row.missing) << row.checks.join(' ').toStdString();
    EXPECT_EQ(result.err.contains("No link leads"), row.unused != nullptr);
    EXPECT_TRUE(row.unused == nullptr || result.err.contains(row.unused)) << result.err.toStdString();
  }
}

TEST(Links, ANewBaseUrlIsWarnedOf) {
  const struct {
    const char* base;
    QVariantList warnings;
  } rows[] = {
      {"https://e.org/m/", {"4 relative links, 1 leads elsewhere in Chrome than in Firefox"}},
      {"https://e.org/m", {"4 relative links, 4 lead elsewhere in Chrome than in Firefox; end the base URL with '/'"}},
      {"https://e.org/old/", {}}};
  WriteFile("a.pdf", LinksPdf(Base("https://e.org/old/"), {"c.html", "/root", "http://e.org/"}));
  for (const auto& row : rows) {
    const ProgramResult result =
        RunProgram({"run", "--action", "Set Base URL", "--set", QStringLiteral("baseUrlString=") + row.base,
                    "--output-dir", "out", "--report", "-", "a.pdf"});
    EXPECT_EQ(ReadReport(result.out)["a.pdf"]["warnings"].toArray().toVariantList(), row.warnings) << row.base;
  }
}

// ---- The action "Make Links Absolute" ----

ProgramResult MakeAbsolute(const QStringList& more) {
  return RunProgram(QStringList{"make-links-absolute", "--in-place", "--report", "-"} + more);
}

// A hybrid-reference file (ISO 32000-2, 7.5.8.4): the links are an object that only the stream of /XRefStm knows.
QByteArray MakeHybridPdf(const QByteArray& catalog, const QByteArray& links) {
  QByteArray pdf = MakePdf(catalog, {}, "/Annots 4 0 R");
  const int table = pdf.lastIndexOf("\nxref\n") + 1;
  const QByteArray object = "4 0 obj\n[" + links + "]\nendobj\n";
  const QByteArray entry =
      QByteArray(1, '\1') + QByteArray::fromHex(QByteArray::number(table, 16).rightJustified(8, '0'));
  const QByteArray stream = "5 0 obj\n<</Type/XRef/Size 6/W[1 4 1]/Index[4 1]/Root 1 0 R/Length 6>>\nstream\n" + entry +
                            QByteArray(1, '\0') + "\nendstream\nendobj\n";
  pdf.insert(table, object + stream);
  pdf.replace("/Size 4 /Root", "/Size 6 /XRefStm " + QByteArray::number(table + object.size()) + " /Root");
  return pdf.replace("startxref\n" + QByteArray::number(table),
                     "startxref\n" + QByteArray::number(table + object.size() + stream.size()));
}

TEST(MakeLinksAbsolute, EveryRelativeLinkLeadsWhereItShould) {
  const QByteArrayList uris{"c.html", "/r", "#p", "mailto:a@b.c", "HTTP://e.org/x y", ""};
  const QStringList after{"https://e.org/m/c.html", "https://e.org/r",  "#p",
                          "mailto:a@b.c",           "HTTP://e.org/x y", "https://e.org/m/"};
  const QStringList outlineAndField{"https://e.org/m/o.html", "https://e.org/m/f.html"};
  const QByteArray pdf = LinksPdf(Base("https://e.org/m/"), uris);
  WriteFile("plain.pdf", pdf);
  ASSERT_EQ(QProcess::execute("qpdf", {"--encrypt", "", "owner", "256", "--", "plain.pdf", "locked.pdf"}), 0);
  const struct {
    const char* what;
    QByteArray pdf;
    QStringList after;
  } rows[] = {{"sound", pdf, after + outlineAndField},
              {"damaged", BreakXref(pdf), after + outlineAndField},
              {"encrypted", ReadFile("locked.pdf"), after + outlineAndField},
              {"hybrid-reference", MakeHybridPdf(Base("https://e.org/m/"), Annotations(uris)), after}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    WriteFile("a.pdf", row.pdf);
    EXPECT_EQ(Uris("a.pdf").value(0), "c.html");
    const ProgramResult result = MakeAbsolute({"a.pdf"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(ReadReport(result.out)["a.pdf"]["saveMode"].toString(), "incremental");
    EXPECT_TRUE(ReadFile("a.pdf").startsWith(row.pdf));
    EXPECT_EQ(Uris("a.pdf"), row.after);
    EXPECT_EQ(BaseUrlOf("a.pdf"), "https://e.org/m/");
  }
}

TEST(MakeLinksAbsolute, AppendsToSignedBytes) {
  const QByteArray pdf = ReadFile(QStringLiteral(SAMPLES "/signed.pdf"));
  WriteFile("signed.pdf", pdf);
  EXPECT_EQ(Uris("signed.pdf"), (QStringList{"spring.html", "../autumn/", "/index.html"}));
  EXPECT_EQ(MakeAbsolute({"--set", "base=https://e.org/m/", "signed.pdf"}).code, 0);
  EXPECT_EQ(Uris("signed.pdf"),
            (QStringList{"https://e.org/m/spring.html", "https://e.org/autumn/", "https://e.org/index.html"}));
  EXPECT_TRUE(ReadFile("signed.pdf").startsWith(pdf));
  QProcess check;
  check.start("pdfsig", {"-nocert", "signed.pdf"});
  ASSERT_TRUE(check.waitForFinished(-1));
  EXPECT_TRUE(check.readAllStandardOutput().contains("Signature Validation: Signature is Valid."));
}

// Most viewers take a string as bytes: what each of them makes of it is shown, and rewritten in ASCII.
TEST(MakeLinksAbsolute, StringsInOtherEncodingsBecomeAscii) {
  const struct {
    const char* string;
    const char* uri;
    bool agree;
    const char* inFirefox;
    const char* inPoppler;
    const char* after;
  } rows[] = {
      {"<FEFF006300E9>", "c\xC3\xA9", false, "https://e.org/%C3%BE%C3%BF%00c%00%C3%A9", "https://e.org/\\udcfe\\udcff",
       "https://e.org/c%C3%A9"},
      {"<FFFE6300>", "c", false, "https://e.org/%C3%BF%C3%BEc", "https://e.org/\\udcff\\udcfec", "https://e.org/c"},
      {"<EFBBBF63>", "c", false, "https://e.org/%EF%BB%BFc", "https://e.org/\\ufeffc", "https://e.org/c"},
      {"(\xA0)", "\xE2\x82\xAC", false, "https://e.org/%C2%A0", "https://e.org/\\udca0", "https://e.org/%E2%82%AC"},
      {"(\xC3\xA9)", "\xC3\xA9", true, "https://e.org/%C3%A9", "https://e.org/\xC3\xA9", "https://e.org/%C3%A9"},
      {"<FEFF0066003A002F0061>", "f:/a", false, "https://e.org/%C3%BE%C3%BF%00f%00:%00/%00a",
       "https://e.org/\\udcfe\\udcff", "f:/a"},
      {"<FEFF00230061>", "#a", false, "https://e.org/%C3%BE%C3%BF%00#%00a", "https://e.org/\\udcfe\\udcff", "#a"}};
  QByteArray annotations;
  for (const auto& row : rows) annotations += Annotation(row.string);
  WriteFile("a.pdf", MakePdf(Base("https://e.org/"), {}, "/Annots[" + annotations + ']'));
  const QByteArrayList before = RunProgram({"links", "--json", "--all", "a.pdf"}).out.split('\n');
  EXPECT_EQ(MakeAbsolute({"a.pdf"}).code, 0);
  const QStringList after = Uris("a.pdf");
  for (int i = 0; i < static_cast<int>(std::size(rows)); ++i) {
    SCOPED_TRACE(rows[i].string);
    const QByteArray line = before.value(i);
    EXPECT_TRUE(line.contains(QByteArray("\"uri\":\"") + rows[i].uri + '"')) << line.toStdString();
    EXPECT_TRUE(line.contains(QByteArray("\"pdfjs\":\"") + rows[i].inFirefox + '"')) << line.toStdString();
    EXPECT_TRUE(line.contains(QByteArray("\"poppler\":\"") + rows[i].inPoppler + '"')) << line.toStdString();
    EXPECT_TRUE(line.endsWith(rows[i].agree ? "\"agree\":true}" : "\"agree\":false}")) << line.toStdString();
    EXPECT_EQ(after.value(i), rows[i].after);
  }
  EXPECT_EQ(ReadFile("a.pdf").count("(f:/a)"), 1);
}

TEST(MakeLinksAbsolute, SettingsAndWarnings) {
  WriteFile("set.pdf", LinksPdf(Base("https://e.org/m/"), {"c.html"}));
  EXPECT_EQ(MakeAbsolute({"--set", "base=https://n.org/", "--set", "removeBase=true", "set.pdf"}).code, 0);
  EXPECT_EQ(Uris("set.pdf").value(0), "https://n.org/c.html");
  EXPECT_FALSE(ReadFile("set.pdf").mid(ReadFile("set.pdf").indexOf("%%EOF")).contains("/Base"));

  // What cannot be resolved stays, with the base URL, and is reported.
  const QByteArray pdfs[] = {LinksPdf("", {"c.html"}), LinksPdf(Base("docs/"), {"c.html"})};
  for (const QByteArray& pdf : pdfs) {
    WriteFile("left.pdf", pdf);
    const ProgramResult result = MakeAbsolute({"--set", "removeBase=true", "left.pdf"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(ReadReport(result.out)["left.pdf"]["warnings"].toArray().toVariantList(),
              QVariantList{"3 relative links have no base URL and stay relative"});
    EXPECT_EQ(ReadFile("left.pdf"), pdf);
  }
}

}  // namespace
