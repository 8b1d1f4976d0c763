// SPDX-License-Identifier: Apache-2.0
// Jobs that are divided over machines: reports of several writers, parts, leftovers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <ctime>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/base/CommandError.h"
#include "host/base/Descriptor.h"
#include "host/files/FileParts.h"
#include "host/files/LeftoverFiles.h"
#include "host/run/ReportFile.h"
#include "host/run/ReportReader.h"
#include "host/run/ResumedReport.h"
#include "tests/support/ProgramRun.h"

using testing::ElementsAre;

namespace {

QByteArray Record(const char* file, const char* status, const char* more = "") {
  return QByteArray("{\"file\":\"") + file + "\",\"output\":\"o\",\"status\":\"" + status + "\"" + more + '}';
}

QByteArray FilesIn(const std::string& report, std::size_t* torn = nullptr) {
  QByteArray files;
  const std::size_t lines = ReadReport(
      report, [&](const QJsonObject& record, const QByteArray&) { files += record["file"].toString().toUtf8() + ' '; });
  if (torn != nullptr) *torn = lines;
  return files;
}

TEST(Reports, BothFormsAreReadAndWhatACrashCutOffIsPassedOver) {
  const QByteArray a = Record("a", "done");
  const QByteArray b = Record("b", "failed");
  const struct {
    const char* name;
    QByteArray content;
    const char* files;
    std::size_t torn;
  } rows[] = {{"lines", a + '\n' + b + '\n', "a b ", 0},
              {"array", "[\n" + a + ",\n" + b + "\n]\n", "a b ", 0},
              {"laid out anew", QJsonDocument::fromJson('[' + a + ',' + b + ']').toJson(), "a b ", 0},
              {"cut off at the end", a + '\n' + b.left(12), "a ", 1},
              {"cut off, then a line of its own", a.left(20) + '\n' + b + '\n', "b ", 1},
              {"cut off, and another run's line", a + '\n' + a.left(20) + b + '\n' + a + '\n', "a b a ", 1},
              {"only a line that was cut off", a.left(20), "", 1},
              {"empty", "", "", 0},
              {"an empty line", "\n" + a + '\n', "a ", 0},
              {"empty array", "[\n]\n", "", 0}};
  for (const auto& row : rows) {
    WriteFile("report", row.content);
    std::size_t torn = 0;
    EXPECT_EQ(FilesIn("report", &torn), row.files) << row.name;
    EXPECT_EQ(torn, row.torn) << row.name;
  }
  for (const char* other : {"%PDF-1.4\n", "[{\"name\":1}]", "7\n"}) {
    WriteFile("report", other);
    EXPECT_THROW(FilesIn("report"), CommandError) << other;
  }
  EXPECT_THROW(FilesIn("missing"), CommandError);
}

TEST(Reports, TheLastAttemptCountsForResuming) {
  const QByteArray a = Record("a", "done");
  WriteFile("report", Record("a", "failed") + '\n' + a + '\n' + a + '\n' + Record("b", "done") + '\n' +
                          Record("b", "failed") + '\n' + Record("a", "skipped") + '\n');
  const ResumedReport report("report");
  EXPECT_NE(report.Find("a", "o"), nullptr);
  EXPECT_TRUE(report.Find("a", "elsewhere") == nullptr && report.Find("b", "o") == nullptr);
  QByteArray carried;
  report.CarryOver([&](const QByteArray& json) { carried += json; });
  EXPECT_EQ(carried, a);

  WriteFile("a.pdf", MakePdf());
  WriteFile("r.jsonl", a.left(20));
  const ProgramResult run = RunProgram(ProbeRun({"--in-place", "--resume", "r.jsonl", "--report", "r.jsonl", "a.pdf"}));
  EXPECT_EQ(run.code, 0);
  EXPECT_TRUE(run.err.contains("crash: 1")) << run.err.toStdString();
  EXPECT_EQ(FilesIn("r.jsonl"), "a.pdf ");
}

TEST(Reports, SeveralRunsWriteOneReport) {
  const auto add = [](ReportFile& report, const QByteArray& json) {
    report.Add(json.toStdString());
    report.Flush();
  };
  ReportFile first("r.jsonl", false);
  ReportFile requeued("r.jsonl", true);
  add(first, Record("a", "done"));
  add(requeued, Record("b", "done"));
  // A third run is killed within a line, and another one begins after that.
  QFile raw("r.jsonl");
  ASSERT_TRUE(raw.open(QIODevice::Append));
  raw.write("{\"file\":\"torn");
  raw.close();
  ReportFile afterwards("r.jsonl", true);
  add(first, Record("c", "done"));
  add(afterwards, Record("d", "done"));
  add(requeued, Record("e", "done"));
  std::size_t torn = 0;
  EXPECT_EQ(FilesIn("r.jsonl", &torn), "a b c d e ");
  EXPECT_EQ(torn, 1U);
  EXPECT_THROW(ReportFile("r.jsonl", false), CommandError) << "it would empty a report that is being written";
  EXPECT_EQ(FilesIn("r.jsonl"), "a b c d e ");
}

TEST(Reports, AreMergedByTheLastRecordOfEachFile) {
  WriteFile("one.jsonl", Record("a", "failed", ",\"reason\":\"bad\"") + '\n' +
                             Record("b", "done", ",\"way\":\"unchanged\",\"warnings\":[\"odd\"]") + '\n' +
                             Record("a", "done", ",\"saveMode\":\"rewrite\"") + '\n' + Record("a", "skipped") + '\n');
  WriteFile("two.json", "[\n" + Record("c,\\udcff", "failed", ",\"reason\":\"bad \\\"x\\\"\"") + ",\n" +
                            Record("d", "skipped", ",\"warnings\":[\"odd\"]") + "\n]\n");
  WriteFile("all.txt", "a\nb\nc,\xFF\nd\ne\ne\n");
  const ProgramResult text = RunProgram({"report", "--files-from", "all.txt", "one.jsonl", "two.json"});
  EXPECT_EQ(text.code, 1);
  EXPECT_EQ(text.out,
            "4 files in 2 reports: 2 done, 1 of them unchanged, 1 failed, 1 skipped, 1 in no report\n"
            "failed:\n  1 x bad \"x\"\n    c,\xFF\nwarnings:\n  2 x odd\n    b\n    d\nin no report:\n    e\n");
  const ProgramResult json = RunProgram({"report", "--json", "--files-from", "all.txt", "one.jsonl", "two.json"});
  const QJsonObject object = QJsonDocument::fromJson(json.out).object();
  EXPECT_EQ(object["failed"].toInt(), 1) << json.out.toStdString();
  EXPECT_EQ(object["failures"][0]["files"][0].toString(), QStringLiteral("c,") + QChar(0xDCFF));
  EXPECT_EQ(object["missingFiles"][0].toString(), "e");
  const ProgramResult csv = RunProgram({"report", "--csv", "--files-from", "all.txt", "one.jsonl", "two.json"});
  EXPECT_THAT(csv.out.split('\n').mid(1), ElementsAre("a,done,,o,rewrite,2,\r", "b,done,,o,unchanged,1,odd\r",
                                                      "\"c,\xFF\",failed,\"bad \"\"x\"\"\",o,,1,\r",
                                                      "d,skipped,,o,,1,odd\r", "e,missing,,,,0,\r", ""));
  EXPECT_EQ(RunProgram({"report", "one.jsonl"}).code, 0);
  const ProgramResult torn = RunProgram({"report", "-"}, Record("a", "done").left(20));
  EXPECT_EQ(torn.code, 1);
  EXPECT_EQ(torn.out, "0 files in 1 report: 0 done, 1 line cut off by a crash\n");
  EXPECT_TRUE(torn.err.contains("No record is whole"));
  EXPECT_EQ(RunProgram({"report", "-"}, Record("a", "done") + '\n').code, 0);
  WriteFile("no-report", "%PDF");
  for (const QStringList& wrong : {QStringList{"missing"}, QStringList{"no-report"}, QStringList{},
                                   QStringList{"--json", "--csv", "one.jsonl"}, QStringList{"-", "-"}}) {
    EXPECT_EQ(RunProgram(QStringList{"report"} + wrong).code, 2) << wrong.join(' ').toStdString();
  }
}

TEST(Reports, WithExitZeroOnlyTheReportShowsFailedDocuments) {
  WriteFile("broken.pdf", "no PDF");
  EXPECT_EQ(RunProgram(ProbeRun({"--in-place", "--report", "r.jsonl", "broken.pdf"})).code, 1);
  EXPECT_EQ(RunProgram(ProbeRun({"--in-place", "--report", "r.jsonl", "--exit-zero", "broken.pdf"})).code, 0);
  EXPECT_EQ(ReadReport(ReadFile("r.jsonl"))["broken.pdf"]["status"].toString(), "failed");
  EXPECT_EQ(RunProgram(ProbeRun({"--in-place", "--exit-zero", "broken.pdf"})).code, 2) << "nothing would show it";
}

TEST(Parts, AreBalancedByBytes) {
  const auto parts = FileParts::Balance({1, 100, 50, 0, 49, 0}, 3);
  EXPECT_THAT(parts[0].files, ElementsAre(1));
  EXPECT_THAT(parts[1].files, ElementsAre(2, 3, 5));
  EXPECT_THAT(parts[2].files, ElementsAre(0, 4));
  EXPECT_EQ(FileParts::Name("x/p-", 7, 10000), "x/p-0007.part");
  EXPECT_EQ(FileParts::Name("", 7, 10001), "00007.part");
}

TEST(Parts, AreListsThatReplaceNothing) {
  for (const char* folder : {"in", "in/below", "lists"}) QDir().mkpath(folder);
  WriteFile("in/a.pdf", QByteArray(300, 'x'));
  WriteFile("in/below/b.pdf", QByteArray(200, 'x'));
  WriteFile("in/below/\nc.PDF", QByteArray(90, 'x'));
  const QStringList split{"split", "--recursive", "--prefix", "lists/p"};
  EXPECT_EQ(RunProgram(split + QStringList{"2", "in", "in/a.pdf", "missing.pdf"}).out,
            "lists/p0000.part\t1\t300\nlists/p0001.part\t3\t290\n");
  EXPECT_EQ(ReadFile("lists/p0000.part"), QByteArray("in/a.pdf\0", 9));
  EXPECT_EQ(ReadFile("lists/p0001.part"), QByteArray("in/below/\nc.PDF\0in/below/b.pdf\0missing.pdf\0", 43));
  EXPECT_EQ(RunProgram(split + QStringList{"3", "in"}).code, 2) << "there are parts";
  EXPECT_FALSE(QFile::exists("lists/p0002.part"));

  WriteFile("a.pdf", "x");
  const QStringList into{"split", "2", "--prefix", "q", "--output-dir"};
  EXPECT_EQ(RunProgram(into + QStringList{"out", "a.pdf", "in/a.pdf"}).code, 2) << "one output of two inputs";
  EXPECT_EQ(RunProgram(into + QStringList{"in", "a.pdf", "in/below/b.pdf", "in/a.pdf"}).code, 2);
  EXPECT_EQ(RunProgram(into + QStringList{"in", "in/below/b.pdf", "in/a.pdf"}).code, 2) << "its own input";
  EXPECT_EQ(RunProgram(into + QStringList{"in/below", "in/a.pdf", "in/below/b.pdf"}).code, 2);
  EXPECT_THAT(QDir().entryList({"q*"}), ElementsAre());
  EXPECT_EQ(RunProgram(into + QStringList{"out", "a.pdf", "in/below/b.pdf"}).code, 0);
  EXPECT_EQ(ReadFile("q0001.part"), "a.pdf\n");
  const ProgramResult many = RunProgram({"split", "3", "--prefix", "m", "a.pdf"});
  EXPECT_EQ(many.code, 0);
  EXPECT_EQ(many.err, "vorlane-run: There are more parts than files (3 parts, 1 file): the last ones are empty.\n");
  for (const QStringList& wrong : {QStringList{"0", "a.pdf"}, QStringList{"x", "a.pdf"}, QStringList{"2"}}) {
    EXPECT_EQ(RunProgram(QStringList{"split"} + wrong).code, 2) << wrong.join(' ').toStdString();
  }
}

TEST(Leftovers, OldOnesThatNobodyHoldsAreRemoved) {
  QDir().mkpath("in/below");
  const QString names[] = {"in/.vorlane-0123456789abcdef.tmp", "in/below/.vorlane-0123456789abcdef.tmp",
                           "in/.vorlane-1111111111111111.tmp", "in/.vorlane-111111111111111.tmp",
                           "in/.vorlane-111111111111111X.tmp", "in/vorlane-1111111111111111.tmp"};
  for (const QString& name : names) {
    WriteFile(name, "x");
    // An old document whose save is under way would look like this.
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::fromSecsSinceEpoch(1000), QFileDevice::FileModificationTime));
  }
  ASSERT_EQ(symlink("../a.pdf", "in/.vorlane-2222222222222222.tmp"), 0);
  WriteFile("a.pdf", MakePdf());
  QFile held("in/.vorlane-1111111111111111.tmp");
  ASSERT_TRUE(held.open(QIODevice::ReadOnly));
  ASSERT_EQ(flock(held.handle(), LOCK_SH), 0);
  QByteArray removed;
  const auto each = [&](const std::string& path, const std::string& problem) {
    removed += (path + problem + '\n').c_str();
  };
  LeftoverFiles::Remove("in", true, std::time(nullptr) - 1000, each);
  EXPECT_EQ(removed, "") << "their names are new";
  LeftoverFiles::Remove("in", false, std::time(nullptr) + 1000, each);
  EXPECT_EQ(removed, "in/.vorlane-0123456789abcdef.tmp\n");
  EXPECT_EQ(RunProgram({"clean", "--recursive", "in"}).out, "");
  const ProgramResult named = RunProgram(ProbeRun({"--in-place", "--recursive", "in"}));
  EXPECT_TRUE(
      named.err.contains(" in/.vorlane-1111111111111111.tmp, in/.vorlane-2222222222222222.tmp, "
                         "in/below/.vorlane-0123456789abcdef.tmp. "))
      << named.err.toStdString();
  // Those in the folders of named files and of outputs too.
  const QByteArray inOut = "out/.vorlane-0123456789abcdef.tmp";
  QDir().mkdir("out");
  WriteFile(inOut, "x");
  for (const QStringList& output : {QStringList{"-d", "out"}, QStringList{"-o", "out/o.pdf"}}) {
    EXPECT_TRUE(RunProgram(ProbeRun(output + QStringList{"a.pdf"})).err.contains(" runs: " + inOut));
  }
  EXPECT_TRUE(RunProgram(ProbeRun({"--in-place", "out/o.pdf"})).err.contains(" runs: " + inOut));
  removed.clear();
  LeftoverFiles::Remove("in", true, std::time(nullptr) + 1000, each);
  EXPECT_EQ(removed, "in/below/.vorlane-0123456789abcdef.tmp\n");
  EXPECT_EQ(QDir("in").entryList(QDir::Files | QDir::Hidden | QDir::System).size(), 5);
  EXPECT_EQ(RunProgram({"clean", "missing"}).code, 1);
  EXPECT_EQ(RunProgram({"clean"}).code, 2);
}

}  // namespace
