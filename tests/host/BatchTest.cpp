// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include "host/base/NativeName.h"
#include "tests/support/ProgramRun.h"

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

TEST(Batch, CallsAndReportAreTheSameWhateverTheJobs) {
  QStringList files = MakeFiles(40, {"throw", "refused"});
  QDir().mkpath("other");
  for (int i = 0; i < 40; i += 3) {
    files += QString("other/f%1.pdf").arg(i, 3, 10, QChar('0'));
    WriteFile(files.last(), MakePdf());
  }
  files += {"missing.pdf", "in/./f000.pdf"};
  QMap<QString, QJsonObject> first;
  for (const char* jobs : {"1", "2", "5", "0"}) {
    QDir("out").removeRecursively();
    QFile::remove("log");
    const ProgramResult result =
        RunProgram(ProbeRun({"--set", "log=log", "--jobs", jobs, "--report", "-", "--output-dir", "out"}) + files);
    EXPECT_EQ(result.code, 1);
    const QList<QByteArray> log = ReadFile("log").trimmed().split('\n');
    EXPECT_EQ(log.count("work fresh"), 56) << jobs;
    EXPECT_TRUE(log.size() == 58 && log.first().startsWith("pre "));
    EXPECT_EQ(log.last(), "post " + log.first().mid(4));
    EXPECT_THAT(result.err.toStdString(), HasSubstr("vorlane-run: 54 done, 3 failed, 1 skipped ("));
    QMap<QString, QJsonObject> report = ReadReport(result.out);
    EXPECT_EQ(report.size(), files.size());
    EXPECT_EQ(report.take("in/./f000.pdf")["status"].toString(), "skipped");
    for (QJsonObject& record : report) {
      record.remove("milliseconds");
      record.remove("outputTime");
    }
    if (first.isEmpty()) first = report;
    EXPECT_EQ(report, first) << jobs;
    EXPECT_TRUE(QFile::exists("out/f039.pdf") && QFile::exists("out/f039 (1).pdf"));
  }
  EXPECT_THAT(first["in/throw.pdf"]["reason"].toString().toStdString(), HasSubstr("action 'Probe': thrown on purpose"));
  EXPECT_EQ(first["in/refused.pdf"]["status"].toString(), "failed");
  EXPECT_FALSE(QFile::exists("out/refused.pdf"));
}

TEST(Batch, AWorkerThatDiesCostsTheFileItHeld) {
  const QStringList files = MakeFiles(60, {"abort", "exit", "abort2", "hang"});
  for (const char* jobs : {"1", "2"}) {
    QDir("out").removeRecursively();
    const ProgramResult result =
        RunProgram(ProbeRun({"--jobs", jobs, "--timeout", "3", "--report", "r.json", "--output-dir", "out"}) + files);
    EXPECT_EQ(result.code, 1);
    const auto report = ReadReport(ReadFile("r.json"));
    EXPECT_EQ(report.size(), files.size());
    EXPECT_EQ(report["in/abort.pdf"]["reason"].toString(), "crashed: signal 6");
    EXPECT_EQ(report["in/abort2.pdf"]["reason"].toString(), "crashed: signal 6");
    EXPECT_EQ(report["in/exit.pdf"]["reason"].toString(), "crashed: exit code 0");
    EXPECT_EQ(report["in/hang.pdf"]["reason"].toString(), "took longer than the time limit of 3 s");
    EXPECT_EQ(QDir("out").entryList(QDir::Files | QDir::Hidden).size(), 60);
  }
}

TEST(Batch, AFileThatTakesTooMuchMemoryFailsAlone) {
  const QStringList files = MakeFiles(10, {"greedy"});
  for (const char* jobs : {"2", "0"}) {
#ifdef __SANITIZE_ADDRESS__  // whose allocator ends the process instead of reporting
    if (*jobs == '0') continue;
#endif
    for (const char* limit : {"200", "900"}) {
      const auto report = ReadReport(
          RunProgram(ProbeRun({"--jobs", jobs, "--memory", limit, "--report", "-", "--in-place"}) + files).out);
      EXPECT_EQ(report["in/greedy.pdf"]["status"].toString(), *limit == '9' ? "done" : "failed") << jobs;
      EXPECT_EQ(report["in/f009.pdf"]["status"].toString(), "done") << jobs;
    }
  }
}

TEST(Batch, AnyFileNameSurvives) {
  const QByteArray names[] = {
      "-dash.pdf", "new\nline.pdf", "\xFF\xFE raw.pdf",           "\xC3\xA4\xF0\x9F\x98\x80.pdf",
      " .pdf",     "quote\"\\.pdf", QByteArray(251, 'n') + ".pdf"};
  QStringList files;
  QByteArray list;
  PrepareToRun();  // whose coding of names the test needs too
  for (const QByteArray& name : names) {
    files += NativeName::ToText(name.toStdString());
    WriteFile(files.last(), MakePdf());
    list += name + '\0';
  }
  for (const char* locale : {"C", "C.UTF-8", "POSIX"}) {
    qputenv("LC_ALL", locale);
    for (const QStringList& input : {QStringList{"--files-from", "-"}, QStringList{"--"} + files}) {
      QDir("out").removeRecursively();
      const auto report = ReadReport(RunProgram(ProbeRun({"--output-dir", "out", "--report", "-"}) + input, list).out);
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
  QFile::link("..", "d/sub/loop");
  ASSERT_EQ(link("d/a.pdf", "d/hard.pdf"), 0);
  const QByteArray names("d\0d/a.pdf\0", 10);
  for (int round = 0; round < 2; ++round) {
    const ProgramResult result = RunProgram(
        ProbeRun({"--recursive", "--output-dir", "d/out", "--report", "-", "--jobs", "1", "--files-from", "-"}), names);
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    const auto report = ReadReport(result.out);
    EXPECT_THAT(report.keys(), testing::ElementsAre("d/a.pdf", "d/hard.pdf", "d/link.pdf", "d/sub/a.PDF"));
    EXPECT_EQ(report["d/link.pdf"]["status"].toString(), "skipped");
    EXPECT_TRUE(QFile::exists("d/out/hard.pdf") && QFile::exists("d/out/sub/a.PDF"));
    EXPECT_FALSE(QFile::exists("d/out/out"));
  }
  const ProgramResult inPlace =
      RunProgram(ProbeRun({"--in-place", "--report", "-", "d/a.pdf", "d/link.pdf", "d/./a.pdf"}));
  EXPECT_EQ(inPlace.code, 0);
  EXPECT_EQ(inPlace.out.count("\"done\""), 1);
  EXPECT_EQ(inPlace.out.count("\"skipped\""), 2);
}

TEST(Batch, NamesSayWhichPartAnOutputFolderRepeats) {
  const struct {
    const char* name;
    const char* output;
  } cases[] = {{"d/./a.pdf", "out/a.pdf"},   {"d/./sub/a.pdf", "out/sub/a.pdf"},     {"./d/./sub/./b.pdf", "out/b.pdf"},
               {"d/sub/b.pdf", "out/b.pdf"}, {"d/./sub/../../d/c.pdf", "out/c.pdf"}, {"d/./../d/d.pdf", "out/d.pdf"}};
  QDir().mkpath("d/sub");
  for (const auto& each : cases) {
    WriteFile(each.name, MakePdf());
    const auto report = ReadReport(RunProgram(ProbeRun({"--output-dir", "out", "--report", "-", each.name})).out);
    EXPECT_EQ(report[each.name]["output"].toString().toStdString(), each.output);
  }
}

TEST(Batch, NeitherDepthNorRightsMakeFoldersSilent) {
  // Deeper than descriptors and path names go; a later file shows that the walk comes back.
  const QByteArray part(100, 'd');
  const int start = open(".", O_RDONLY | O_DIRECTORY);
  ASSERT_TRUE(QDir().mkdir("t") && QDir().mkdir("t/locked") && QDir().mkdir("t/unreadable"));
  WriteFile("t/z.pdf", MakePdf());
  WriteFile("t/locked/hidden.pdf", MakePdf());
  ASSERT_EQ(chdir("t"), 0);
  for (int i = 0; i < 80; ++i) ASSERT_TRUE(mkdir(part.constData(), 0700) == 0 && chdir(part.constData()) == 0);
  WriteFile("deep.pdf", MakePdf());
  ASSERT_EQ(fchdir(start), 0);
  close(start);
  chmod("t/locked", 0400);
  chmod("t/unreadable", 0100);
  const ProgramResult result = RunProgram(ProbeRun({"--recursive", "--in-place", "--report", "-", "t"}));
  chmod("t/locked", 0700);
  chmod("t/unreadable", 0700);
  EXPECT_EQ(QProcess::execute("rm", {"-rf", QString("t/") + part}), 0);
  EXPECT_EQ(result.code, 1);
  const auto report = ReadReport(result.out);
  EXPECT_EQ(report["t/z.pdf"]["status"].toString(), "done");
  EXPECT_THAT(report.first()["reason"].toString().toStdString(), HasSubstr("path is too long"));
  if (geteuid() == 0) return;
  EXPECT_EQ(report["t/locked/hidden.pdf"]["reason"].toString(), "cannot be looked up: Permission denied");
  EXPECT_EQ(report["t/unreadable/"]["reason"].toString(), "cannot read the folder: Permission denied");
}

TEST(Batch, ResultsReportAndInputsNeverReplaceEachOther) {
  QDir().mkpath("x");
  QDir().mkpath("q");
  for (const char* name : {"x/a.pdf", "x/b.pdf", "x/r.json", "x/r.jsonl", "x/l.json"}) WriteFile(name, MakePdf());
  WriteFile("q/a.pdf", MakePdf("/URI<</Base(http://kept/)>>"));
  QFile::link("../x/b.pdf", "q/b.pdf");
  QFile::link("r.json", "q/l.json");
  QFile::link("q/r.json", "link.json");
  const QStringList run = ProbeRun({"--output-dir", "q"});
  EXPECT_EQ(RunProgram(run + QStringList{"x/a.pdf", "x/b.pdf", "q/a.pdf"}).code, 1);
  EXPECT_EQ(BaseUrlOf("q/a.pdf"), "http://kept/");
  EXPECT_EQ(ReadFile("x/b.pdf"), MakePdf());
  EXPECT_EQ(BaseUrlOf("q/a (1).pdf"), "http://new/");

  WriteFile("q/names", "x/a.pdf\nx/r.json\n");
  const std::pair<QStringList, QString> overwrites[] = {{{"--report", "q/r.json", "x/r.json"}, "q/r.json"},
                                                        {{"--report", "link.json", "x/r.json"}, "q/r.json"},
                                                        {{"--report", "./q/r.json", "x/l.json"}, "q/r.json"},
                                                        {{"--report", "q/r.jsonl", "x/r.jsonl"}, "q/r.jsonl"}};
  for (const auto& [arguments, report] : overwrites) {
    EXPECT_EQ(RunProgram(run + arguments).code, 1);
    const auto records = ReadReport(ReadFile(report));
    EXPECT_EQ(records.size(), 1) << arguments.join(' ').toStdString();
    EXPECT_THAT(records.first()["reason"].toString().toStdString(), HasSubstr("would overwrite the report"));
    QFile::remove(report);
  }
  const QByteArray list = ReadFile("q/names");
  EXPECT_EQ(RunProgram(run + QStringList{"--files-from", "q/names", "--report", "x/../q/names"}).code, 2);
  WriteFile("names", MakePdf());
  const ProgramResult overList = RunProgram(run + QStringList{"names", "--files-from", "q/names"});
  EXPECT_THAT(overList.err.toStdString(), HasSubstr("would overwrite the list of files"));
  EXPECT_EQ(ReadFile("q/names"), list);
}

TEST(Batch, ClosedDescriptorsAreNobodysFile) {
  for (const char* closed : {"<&- >&- 2>&-", ">&- 2>&-", "2>&-"}) {
    const QStringList files = MakeFiles(3, {"throw"});
    PrepareToRun();
    QProcess process;
    const QString script = QString("exec \"$0\" \"$@\" %1").arg(closed);
    process.start("bash", QStringList{"-c", script, VORLANE_RUN_FILE} +
                              ProbeRun({"--in-place", "--jobs", "2", "--report", "r.jsonl"}) + files);
    EXPECT_EQ(FinishProgram(process).code, 1) << closed;
    EXPECT_EQ(ReadReport(ReadFile("r.jsonl")).size(), 4) << closed;
    EXPECT_EQ(ReadFile("in/throw.pdf"), MakePdf());
    EXPECT_EQ(BaseUrlOf("in/f002.pdf"), "http://new/");
  }
}

TEST(Batch, SeveralRunsOverOneFolderLoseNoUpdate) {
  const QStringList files = MakeFiles(600);
  std::vector<std::unique_ptr<QProcess>> runs;
  QMap<QString, int> done;
  for (int i = 0; i < 3; ++i) {
    QStringList run = ProbeRun({"--set", "add=1", "--in-place", "--jobs", "2", "--report", "-"});
    run.replaceInStrings("http://new/", "x");
    runs.push_back(StartProgram(run + files));
  }
  for (const auto& run : runs) {
    const ProgramResult result = FinishProgram(*run);
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    for (const QJsonObject& record : ReadReport(result.out))
      done[record["file"].toString()] += record["status"] == "done" ? 1 : 0;
  }
  const QList<QByteArray> urls = RunProgram(QStringList{"show"} + files).out.trimmed().split('\n');
  for (const QByteArray& line : urls) {
    const QList<QByteArray> parts = line.split('\t');
    EXPECT_EQ(parts.last().size(), done[parts.first()]) << line.toStdString();
  }
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
