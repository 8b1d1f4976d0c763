// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "tests/support/ProgramRun.h"

using testing::HasSubstr;

namespace {

TEST(Show, AnswersAsJson) {
  const QByteArray annotations =
      "/Annots[<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(a.html)>>>>"
      "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(http://x/)>>>>]";
  WriteFile("plain.pdf", MakePdf());
  WriteFile("empty.pdf", MakePdf("/URI<</Base()>>"));
  WriteFile("number.pdf", MakePdf("/URI<</Base 7>>"));
  WriteFile("url.pdf", MakePdf("/URI<</Base(http://b/)>>/Version/2.0"));
  WriteFile("older.pdf", MakePdf("/Version/1.4"));
  WriteFile("links.pdf", MakePdf().replace("/Parent 2 0 R", "/Parent 2 0 R" + annotations));
  WriteFile("certified.pdf", MakeSignedPdf(2));
  WriteFile("text.pdf", "no PDF");
  ASSERT_EQ(QProcess::execute("qpdf", {"--encrypt", "", "owner", "256", "--", "plain.pdf", "locked.pdf"}), 0);
  ASSERT_EQ(QProcess::execute("qpdf", {"--allow-weak-crypto", "--encrypt", "", "owner", "128", "--use-aes=n", "--",
                                       "plain.pdf", "rc4.pdf"}),
            0);
  ASSERT_EQ(QProcess::execute("qpdf", {"--encrypt", "user", "owner", "256", "--", "plain.pdf", "secret.pdf"}), 0);
  ASSERT_EQ(QProcess::execute("qpdf", {"--linearize", "plain.pdf", "linear.pdf"}), 0);
  const ProgramResult result = RunProgram({"show", "--json", "--recursive", "."});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "");
  const auto answers = ReadReport(result.out);
  ASSERT_EQ(answers.size(), 12);
  const std::pair<const char*, const char*> rows[] = {
      {"plain.pdf", R"("baseUrl":null,"pages":1,"pdfVersion":"1.7","encrypted":null,"signatures":0,
          "certification":null,"linearized":false,"links":{"total":0,"relative":0},"saveMode":"incremental",
          "error":null)"},
      {"empty.pdf", R"("baseUrl":"")"},
      {"number.pdf", R"("baseUrl":null)"},
      {"url.pdf", R"("baseUrl":"http://b/","pdfVersion":"2.0")"},
      {"older.pdf", R"("pdfVersion":"1.7")"},
      {"links.pdf", R"("links":{"total":2,"relative":1})"},
      {"certified.pdf", R"("signatures":1,"certification":2)"},
      {"locked.pdf", R"("encrypted":{"algorithm":"AES","bits":256})"},
      {"rc4.pdf", R"("encrypted":{"algorithm":"RC4","bits":128})"},
      {"linear.pdf", R"("linearized":true)"},
      {"text.pdf", R"("pages":null,"encrypted":null,"size":6,"error":"not a PDF")"},
      {"secret.pdf", R"("encrypted":{"algorithm":null,"bits":null},"error":"a password is needed")"}};
  for (const auto& [file, expected] : rows) {
    const QJsonObject answer = answers[QString("./") + file];
    const QJsonObject facts = QJsonDocument::fromJson('{' + QByteArray(expected) + '}').object();
    EXPECT_FALSE(facts.isEmpty()) << file;
    for (const QString& key : facts.keys()) EXPECT_EQ(answer[key], facts[key]) << file << ' ' << key.toStdString();
    EXPECT_EQ(answer.keys(), answers["./plain.pdf"].keys());
  }
  for (const char* file : {"plain.pdf", "secret.pdf"}) {
    EXPECT_EQ(answers[QString("./") + file]["size"].toInt(), QFile(file).size());
  }
}

TEST(Show, KeepsTheOrderOfTheInputsWhateverTheJobs) {
  QByteArray list;
  QByteArray expected;
  for (int i = 0; i < 300; ++i) {
    const QByteArray name = "f" + QByteArray::number(i * 7919 % 300);
    list += name + '\n';
    if (i % 50 == 7) continue;  // missing files
    WriteFile(name, MakePdf("/URI<</Base(http://" + name + "/)>>"));
    expected += name + "\thttp://" + name + "/\n";
  }
  for (const char* jobs : {"0", "1", "2", "5"}) {
    const ProgramResult result = RunProgram({"show", "--files-from", "-", "--jobs", jobs}, list);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, expected) << jobs;
    EXPECT_EQ(result.err.count("no such file"), 6) << jobs;
    EXPECT_EQ(result.err.count('\n'), 6) << result.err.toStdString();
  }
}

}  // namespace
