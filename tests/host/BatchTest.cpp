// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include "host/base/NativeName.h"
#include "tests/host/ProgramRun.h"

using testing::HasSubstr;

namespace {

QStringList MakeFiles(int count, const QStringList& names = {}) {
  QDir().mkpath("in");
  QStringList files;
  for (int i = 0; i < count; ++i) files += QString("in/f%1.pdf").arg(i, 3, 10, QChar('0'));
  for (int i = 0; i < names.size(); ++i) files.insert((i + 1) * count / (names.size() + 1), "in/" + names[i] + ".pdf");
  for (const QString& file : files) WriteFile(file, MakePdf());
  return files;
}

TEST(Batch, EachProcIsCalledAsOftenAsPromised) {
  const QStringList files = MakeFiles(30);
  for (const char* jobs : {"0", "1", "3"}) {
    QFile::remove("log");
    const ProgramResult result =
        RunProgram(ProbeRun({"--set", "log=log", "--jobs", jobs, "--output-dir", "out"}) + files);
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    const QList<QByteArray> log = ReadFile("log").trimmed().split('\n');
    ASSERT_EQ(log.size(), 32) << jobs;
    EXPECT_EQ(log.count("work fresh"), 30) << jobs;
    EXPECT_TRUE(log.first().startsWith("pre "));
    EXPECT_EQ(log.last(), "post " + log.first().mid(4));
  }
}

TEST(Batch, TheReportIsTheSameWhateverTheJobs) {
  QStringList files = MakeFiles(40, {"throw", "refused"});
  QDir().mkpath("other");
  for (int i = 0; i < 40; i += 3) {
    files += QString("other/f%1.pdf").arg(i, 3, 10, QChar('0'));
    WriteFile(files.last(), MakePdf());
  }
  files += "missing.pdf";
  QMap<QString, QJsonObject> first;
  for (const char* jobs : {"1", "2", "5", "0"}) {
    QDir("out").removeRecursively();
    const ProgramResult result = RunProgram(ProbeRun({"--jobs", jobs, "--report", "-", "--output-dir", "out"}) + files);
    EXPECT_EQ(result.code, 1);
    QMap<QString, QJsonObject> report = ReadReport(result.out);
    EXPECT_EQ(report.size(), files.size());
    for (QJsonObject& record : report) record.remove("milliseconds");
    if (first.isEmpty()) first = report;
    EXPECT_EQ(report, first) << jobs;
    EXPECT_TRUE(QFile::exists("out/f039.pdf") && QFile::exists("out/f039 (1).pdf"));
  }
  EXPECT_THAT(first["in/throw.pdf"]["reason"].toString().toStdString(), HasSubstr("action 'Probe': thrown on purpose"));
  EXPECT_EQ(first["in/refused.pdf"]["status"].toString(), "failed");
  EXPECT_FALSE(QFile::exists("out/refused.pdf"));
}

TEST(Batch, TheClosingLineCounts) {
  const QStringList files = MakeFiles(12, {"throw"});
  const QStringList run = ProbeRun({"--in-place"});
  EXPECT_EQ(RunProgram(run + QStringList{"in/f001.pdf", "in/f007.pdf"}).code, 0);
  for (const char* jobs : {"0", "2"}) {
    const ProgramResult result = RunProgram(run + QStringList{"--jobs", jobs, "in/f001.pdf"} + files);
    EXPECT_THAT(result.err.toStdString(),
                HasSubstr(std::string("vorlane-run: 12 done, ") + (jobs[0] == '0' ? "2" : "12") +
                          " of them unchanged, 1 failed, 1 skipped ("));
  }
}

TEST(Batch, AWorkerThatDiesCostsTheFileItHeld) {
  const QStringList files = MakeFiles(60, {"abort", "exit", "abort2", "hang"});
  for (const char* jobs : {"1", "2"}) {
    QDir("out").removeRecursively();
    const ProgramResult result =
        RunProgram(ProbeRun({"--jobs", jobs, "--timeout", "1", "--report", "r.json", "--output-dir", "out"}) + files);
    EXPECT_EQ(result.code, 1);
    const auto report = ReadReport(ReadFile("r.json"));
    EXPECT_EQ(report.size(), files.size());
    EXPECT_EQ(report["in/abort.pdf"]["reason"].toString(), "crashed: signal 6");
    EXPECT_EQ(report["in/abort2.pdf"]["reason"].toString(), "crashed: signal 6");
    EXPECT_EQ(report["in/exit.pdf"]["reason"].toString(), "crashed: exit code 0");
    EXPECT_EQ(report["in/hang.pdf"]["reason"].toString(), "took longer than the time limit");
    EXPECT_EQ(QDir("out").entryList(QDir::Files | QDir::Hidden).size(), 60);
  }
}

TEST(Batch, AFileThatTakesTooMuchMemoryFailsAlone) {
  const QStringList files = MakeFiles(10, {"greedy"});
#ifdef __SANITIZE_ADDRESS__  // whose allocator ends the process instead of reporting
  const std::vector<const char*> someJobs = {"2"};
#else
  const std::vector<const char*> someJobs = {"2", "0"};
#endif
  for (const char* jobs : someJobs) {
    for (const bool enough : {false, true}) {
      QDir("out").removeRecursively();
      const ProgramResult result = RunProgram(
          ProbeRun({"--jobs", jobs, "--memory", enough ? "900" : "200", "--report", "-", "--output-dir", "out"}) +
          files);
      const auto report = ReadReport(result.out);
      EXPECT_EQ(report["in/greedy.pdf"]["status"].toString(), enough ? "done" : "failed") << jobs;
      EXPECT_EQ(QDir("out").entryList(QDir::Files).size(), enough ? 11 : 10) << jobs;
    }
  }
}

TEST(Batch, ARunThatCannotBeginLeavesTheEarlierReport) {
  const QStringList files = MakeFiles(2);
  for (const char* jobs : {"1", "0"}) {
    WriteFile("r.jsonl", "earlier\n");
    const QStringList run = ProbeRun({"--jobs", jobs, "--report", "r.jsonl", "--output-dir", "out"});
    EXPECT_EQ(RunProgram(run + QStringList{"--pdf-library", "missing"} + files).code, 3);
    EXPECT_EQ(ReadFile("r.jsonl"), "earlier\n");
    EXPECT_EQ(RunProgram(run + files).code, 0);
    EXPECT_EQ(ReadFile("r.jsonl").count('\n'), 2);
  }
}

TEST(Batch, AnyFileNameSurvives) {
  const QByteArray names[] = {
      "-dash.pdf", "new\nline.pdf", "\xFF\xFE raw.pdf",           "\xC3\xA4\xF0\x9F\x98\x80.pdf",
      " .pdf",     "quote\"\\.pdf", QByteArray(251, 'n') + ".pdf"};
  QStringList files;
  QByteArray zeroSeparated;
  for (const QByteArray& name : names) {
    files += NativeName::ToText(name.toStdString());
    zeroSeparated += name + '\0';
  }
  for (const char* locale : {"C", "C.UTF-8", "POSIX"}) {
    qputenv("LC_ALL", locale);
    for (const bool fromInput : {false, true}) {
      QDir("out").removeRecursively();
      (void)RunProgram({"--version"});
      for (const QString& file : files) WriteFile(file, MakePdf());
      const QStringList how = fromInput ? QStringList{"--files-from", "-"} : QStringList{"--"} + files;
      const ProgramResult result =
          RunProgram(ProbeRun({"--output-dir", "out", "--report", "r.json"}) + how, fromInput ? zeroSeparated : "");
      EXPECT_EQ(result.code, 0) << result.err.toStdString();
      const auto report = ReadReport(ReadFile("r.json"));
      for (const QString& file : files) {
        EXPECT_EQ(report[file]["status"].toString(), "done") << file.toStdString();
        EXPECT_TRUE(QFile::exists("out/" + file)) << file.toStdString();
      }
    }
  }
  qunsetenv("LC_ALL");
}

TEST(Batch, FoldersKeepTheirShapeAndTheSameFileIsDoneOnce) {
  QDir().mkpath("d/sub");
  for (const char* name : {"d/a.pdf", "d/sub/a.PDF", "d/x.txt"}) WriteFile(name, MakePdf());
  QFile::link("a.pdf", "d/link.pdf");
  for (int round = 0; round < 2; ++round) {
    const ProgramResult result =
        RunProgram(ProbeRun({"--recursive", "--output-dir", "d/out", "--report", "-", "d", "d/a.pdf"}));
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    const auto report = ReadReport(result.out);
    EXPECT_EQ(report.size(), 3);
    EXPECT_EQ(report["d/link.pdf"]["status"].toString(), "skipped");
    EXPECT_TRUE(QFile::exists("d/out/a.pdf") && QFile::exists("d/out/sub/a.PDF"));
    EXPECT_FALSE(QFile::exists("d/out/out"));
  }
  const ProgramResult inPlace =
      RunProgram(ProbeRun({"--in-place", "--report", "-", "d/a.pdf", "d/link.pdf", "d/./a.pdf"}));
  EXPECT_EQ(inPlace.code, 0);
  EXPECT_EQ(inPlace.out.count("\"done\""), 1);
  EXPECT_EQ(inPlace.out.count("\"skipped\""), 2);
}

TEST(Batch, AnOutputNeverOverwritesAnotherInput) {
  QDir().mkpath("x");
  QDir().mkpath("out");
  WriteFile("x/a.pdf", MakePdf());
  WriteFile("x/b.pdf", MakePdf());
  WriteFile("out/a.pdf", MakePdf("/URI<</Base(http://kept/)>>"));
  QFile::link("../x/b.pdf", "out/b.pdf");
  const ProgramResult result = RunProgram(ProbeRun({"--output-dir", "out", "x/a.pdf", "x/b.pdf", "out/a.pdf"}));
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(BaseUrlOf("out/a.pdf"), "http://kept/");
  EXPECT_EQ(ReadFile("x/b.pdf"), MakePdf());
  EXPECT_EQ(BaseUrlOf("out/a (1).pdf"), "http://new/");
}

TEST(Batch, ResumeSkipsWhatWasDoneAndTheReportStaysWhole) {
  const QStringList files = MakeFiles(20);
  for (const char* form : {"r.json", "r.jsonl"}) {
    QDir("out").removeRecursively();
    QFile::remove("log");
    QFile::remove("in/f007.pdf");
    EXPECT_EQ(RunProgram(ProbeRun({"--output-dir", "out", "--report", form}) + files).code, 1);
    WriteFile("in/f007.pdf", MakePdf());
    if (QByteArray(form) == "r.jsonl") {
      QByteArray torn = ReadFile(form);
      torn.chop(30);
      WriteFile(form, torn);
    }
    const ProgramResult again =
        RunProgram(ProbeRun({"--set", "log=log", "--output-dir", "out", "--resume", form, "--report", form}) + files);
    EXPECT_EQ(again.code, 0) << again.err.toStdString();
    EXPECT_LE(ReadFile("log").count("work"), 2) << form;
    const auto report = ReadReport(ReadFile(form));
    EXPECT_EQ(report.size(), files.size());
    for (const QJsonObject& record : report) EXPECT_EQ(record["status"].toString(), "done");
  }
}

TEST(Batch, ValuesThatNoOneTypes) {
  const QString astral = QString::fromUtf8("http://\xF0\x9F\x98\x80/");
  WriteFile("a.pdf", MakePdf());
  QStringList arguments{
      "run", "--action", "Set Base URL", "--in-place", "--report", "-", "--set", "baseUrlString=" + astral, "a.pdf"};
  EXPECT_EQ(RunProgram(arguments).code, 0);
  EXPECT_EQ(BaseUrlOf("a.pdf"), "http://%F0%9F%98%80/");
  EXPECT_EQ(RunProgram({"run", "--action", "Set Base URL", "--in-place", "a.pdf"}).code, 0);
  EXPECT_EQ(BaseUrlOf("a.pdf"), "");
}

TEST(Batch, GuiActionsGetAPlatform) {
  WriteFile("a.pdf", MakePdf());
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  qunsetenv("QT_QPA_PLATFORM");
  const QStringList run = ProbeRun({"--in-place", "a.pdf"});
  QStringList gui = run;
  gui.replaceInStrings("baseUrlString=http://new/", "baseUrlString=platform");
  gui += "--gui";
  EXPECT_EQ(RunProgram(gui).code, 0);
  EXPECT_EQ(BaseUrlOf("a.pdf"), "offscreen");
  if (!platform.isEmpty()) qputenv("QT_QPA_PLATFORM", platform);
}

}  // namespace
