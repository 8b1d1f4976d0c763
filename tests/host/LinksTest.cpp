// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/base/CommandError.h"
#include "host/links/LinkCheck.h"
#include "tests/host/ProgramRun.h"

namespace {

// A PDF with a link annotation for each URI, an outline item and a form field that is on no page, with a link each.
// `catalog` holds further entries of the catalog.
QByteArray LinksPdf(const QByteArray& catalog, const QByteArrayList& uris) {
  const auto action = [](const QByteArray& uri) { return "/A<</S/URI/URI(" + uri + ")>>"; };
  QByteArray annotations;
  for (const QByteArray& uri : uris) {
    annotations += "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]" + action(uri) + ">>";
  }
  return MakePdf("/Outlines 4 0 R/AcroForm<</Fields[6 0 R]>>" + catalog,
                 {"<</Type/Outlines/First 5 0 R/Last 5 0 R/Count 1>>",
                  "<</Title(t)/Parent 4 0 R" + action("o.html") + ">>", "<</FT/Tx/T(f)" + action("f.html") + ">>"},
                 "/Annots[" + annotations + ']');
}

QByteArray Base(const QByteArray& url) {
  return "/URI<</Base(" + url + ")>>";
}

QList<QJsonObject> Links(const QStringList& arguments) {
  QList<QJsonObject> links;
  for (const QByteArray& line : RunProgram(QStringList{"links", "--json", "--all"} + arguments).out.split('\n')) {
    if (!line.isEmpty()) links += QJsonDocument::fromJson(line).object();
  }
  return links;
}

QStringList Uris(const QString& file) {
  QStringList uris;
  for (const QJsonObject& link : Links({file})) uris += link["uri"].toString();
  return uris;
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
  } rows[] = {
      {{"good.pdf", "slash.pdf"}, 0, "8 links in 2 files: 7 relative, viewers disagree on 3 of these, 0 without"},
      {{"--strict", "good.pdf"}, 0, "viewers disagree on 0"},
      {{"--strict", "slash.pdf"}, 1, "! Firefox"},
      {{"--strict", "none.pdf"}, 1, "2 without a base URL"},
      {{"--strict", "--base", "https://e.org/", "none.pdf"}, 0, "https://e.org/o.html"},
      {{"junk.pdf", "good.pdf"}, 1, "junk.pdf: not a PDF"},
      {{"missing.pdf"}, 1, "missing.pdf: no such file"},
      {{"--base", "x/", "good.pdf"}, 2, "scheme"},
      {{"--check", "x", "good.pdf"}, 2, "URL=FOLDER"},
      {{"--check", "https://e.org=nowhere", "good.pdf"}, 2, "nowhere"},
      {{"--json", "--csv", "good.pdf"}, 2, "exclude"},
      {{}, 2, "No file"}};
  for (const auto& row : rows) {
    const ProgramResult result = RunProgram(QStringList{"links"} + row.arguments);
    EXPECT_EQ(result.code, row.code) << row.arguments.join(' ').toStdString();
    EXPECT_TRUE((result.out + result.err).contains(row.shown)) << (result.out + result.err).toStdString();
  }
}

TEST(Links, ManyFilesInTheirOrderFromSeveralWorkers) {
  QByteArray names;
  QStringList expected;
  for (int i = 0; i < 40; ++i) {
    const QByteArray name = QByteArray::number(i) + ".pdf";
    WriteFile(name, LinksPdf(Base("https://e.org/"), {name}));
    names += name + '\n';
    expected += name;
  }
  const ProgramResult result = RunProgram({"links", "--json", "--jobs", "3", "--files-from", "-"}, names);
  EXPECT_EQ(result.code, 0);
  QStringList found;
  for (const QByteArray& line : result.out.split('\n')) {
    const QJsonObject link = QJsonDocument::fromJson(line).object();
    if (link["kind"] == "annotation") found += link["uri"].toString();
  }
  EXPECT_EQ(found, expected);
}

TEST(LinkCheck, LooksInTheFolderAndNeverOutside) {
  QDir().mkpath("site/dir");
  QDir().mkpath("site/empty");
  for (const char* const name : {"site/a b.html", "site/dir/index.html", "secret", "site/\xC3\xA4"})
    WriteFile(name, "x");
  QFile::link(QDir::current().filePath("secret"), "site/out");
  const LinkCheck check("https://e.org/x=site");
  const struct {
    const char* target;
    int has;  // -1: not below the URL
  } rows[] = {{"https://e.org/x/a%20b.html", 1},    {"https://e.org/x/a%20b.html?q#f", 1},
              {"https://e.org/x/%C3%A4", 1},        {"https://e.org/x/dir", 1},
              {"https://e.org/x/dir/", 1},          {"https://e.org/x/dir//index.html", 1},
              {"https://e.org/x/empty", 0},         {"https://e.org/x", 0},
              {"https://e.org/x/a%20b.html/", 0},   {"https://e.org/x/%2e%2e/secret", 0},
              {"https://e.org/x/%2Fetc/passwd", 0}, {"https://e.org/x/out", 0},
              {"https://e.org/x/a%00", 0},          {"https://e.org/x/none", 0},
              {"https://e.org/xy/a", -1},           {"http://e.org/x/a", -1}};
  for (const auto& row : rows) {
    const std::optional<bool> has = check.Has(row.target);
    EXPECT_EQ(has ? static_cast<int>(*has) : -1, row.has) << row.target;
  }
  EXPECT_EQ(LinkCheck("https://e.org/?a=b=site").Has("https://e.org/?a=b"), std::optional<bool>(false));
  for (const char* const wrong : {"x", "=site", "x=site", "https://e.org=none"}) {
    EXPECT_THROW(LinkCheck{wrong}, CommandError) << wrong;
  }
}

TEST(Links, CheckListsWhatIsMissing) {
  QDir().mkpath("site");
  WriteFile("site/here.html", "x");
  WriteFile("a.pdf", LinksPdf(Base("https://e.org/d/"), {"here.html", "gone.html", "https://e.org/d/away", "/up"}));
  const ProgramResult result = RunProgram({"links", "--json", "--check", "https://e.org/d/=site", "a.pdf"});
  EXPECT_EQ(result.code, 1);
  QStringList missing;
  for (const QByteArray& line : result.out.split('\n')) {
    if (!line.isEmpty()) missing += QJsonDocument::fromJson(line).object()["uri"].toString();
  }
  EXPECT_EQ(missing, (QStringList{"gone.html", "https://e.org/d/away", "o.html", "f.html"}));
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

TEST(MakeLinksAbsolute, EveryRelativeLinkLeadsWhereItShould) {
  const QByteArray pdf = LinksPdf(Base("https://e.org/m/"), {"c.html", "/r", "#p", "mailto:a@b.c", "HTTP://e.org/x y"});
  const struct {
    const char* what;
    QByteArray pdf;
    const char* saveMode;
  } rows[] = {{"sound", pdf, "incremental"}, {"damaged", BreakXref(pdf), "incremental"}};
  for (const auto& row : rows) {
    WriteFile("a.pdf", row.pdf);
    const ProgramResult result = MakeAbsolute({"a.pdf"});
    EXPECT_EQ(result.code, 0) << row.what;
    EXPECT_EQ(ReadReport(result.out)["a.pdf"]["saveMode"].toString(), row.saveMode) << row.what;
    EXPECT_TRUE(ReadFile("a.pdf").startsWith(row.pdf)) << row.what;
    EXPECT_EQ(Uris("a.pdf"), (QStringList{"https://e.org/m/c.html", "https://e.org/r", "#p", "mailto:a@b.c",
                                          "HTTP://e.org/x y", "https://e.org/m/o.html", "https://e.org/m/f.html"}))
        << row.what;
    EXPECT_EQ(BaseUrlOf("a.pdf"), "https://e.org/m/") << row.what;
  }
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
