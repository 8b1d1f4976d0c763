// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include "tests/support/ProgramRun.h"

using testing::HasSubstr;

namespace {

const QByteArray kOld = MakePdf("/URI<</Base(http://old/)>>");
const QByteArray kNew = MakePdf("/URI<</Base(http://new/)>>");
const QByteArray kNone = MakePdf();
// Its catalog is in the trailer, where no update can change it.
const QByteArray kRewritten = MakePdf().replace("/Root 1 0 R", "/Root<</Type/Catalog/Pages 2 0 R>>");

QStringList Names(const QString& folder = ".") {
  return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

// One word for each record, in the order of the names.
QStringList Statuses(const QByteArray& report) {
  QStringList statuses;
  for (const QJsonObject& record : ReadReport(report)) statuses += record["status"].toString();
  return statuses;
}

TEST(DryRun, SaysWhatTheRunDoesAndWritesNothing) {
  QDir().mkdir("in");
  const std::pair<const char*, QByteArray> files[] = {{"a.pdf", kNone},
                                                      {"b.pdf", kNew},
                                                      {"bad.pdf", "text"},
                                                      {"c1.pdf", MakeSignedPdf(1)},
                                                      {"c2.pdf", MakeSignedPdf(2)},
                                                      {"old.pdf", kRewritten},
                                                      {"signed.pdf", MakeSignedPdf()}};
  for (const auto& [name, content] : files) WriteFile(QString("in/") + name, content);
  const QStringList outputs[] = {{"--in-place"}, {"--in-place", "--backup", "~"}, {"--output-dir", "new/out"}};
  for (const QStringList& output : outputs) {
    const QStringList run = ProbeRun(output + QStringList{"--recursive", "--report", "-", "in"});
    const ProgramResult dry = RunProgram(run + QStringList{"--dry-run"});
    EXPECT_EQ(dry.code, 1);
    EXPECT_THAT(dry.err.toStdString(),
                HasSubstr("dry run, nothing was saved: 4 would change, 1 would stay unchanged, 2 failed"));
    EXPECT_FALSE(QFile::exists("new"));
    EXPECT_EQ(Names("in").size(), 7);
    for (const auto& [name, content] : files) EXPECT_EQ(ReadFile(QString("in/") + name), content) << name;

    const ProgramResult wet = RunProgram(run);
    auto before = ReadReport(dry.out);
    auto after = ReadReport(wet.out);
    for (QJsonObject& record : before) {
      const QString status = record["status"].toString();
      if (status == "would-change" || status == "unchanged") record["status"] = "done";
      record.remove("milliseconds");
    }
    for (QJsonObject& record : after) {
      EXPECT_EQ(record.contains("outputSize"), record["status"] == "done");
      for (const char* key : {"milliseconds", "outputSize", "outputTime"}) record.remove(key);
    }
    EXPECT_EQ(before, after) << output.join(' ').toStdString();
    EXPECT_EQ(after["in/c2.pdf"]["certification"].toInt(), 2);
    EXPECT_EQ(after["in/signed.pdf"]["signatures"].toInt(), 1);
    EXPECT_EQ(after["in/old.pdf"]["saveMode"].toString(), "rewrite");
    for (const auto& [name, content] : files) {
      QFile::remove(QString("in/") + name + '~');
      WriteFile(QString("in/") + name, content);
    }
  }
}

TEST(DryRun, ListsWhatWouldBecomeOfEachFile) {
  WriteFile("a.pdf", kOld);
  WriteFile("b.pdf", kNew);
  WriteFile("c.pdf", MakeSignedPdf(2));
  WriteFile("d.pdf", "text");
  QDir().mkdir("out");
  WriteFile("out/b.pdf", kNew + "% more");
  const QStringList files{"a.pdf", "b.pdf", "c.pdf", "d.pdf", "./a.pdf"};
  const QStringList inPlace = ProbeRun({"--dry-run", "--jobs", "1", "--in-place", "--backup", "~"}) + files;
  const ProgramResult result = RunProgram(inPlace);
  EXPECT_EQ(result.out,
            "./a.pdf: skipped: the same file as a.pdf\n"
            "a.pdf: http://old/ -> http://new/ (incremental, backup a.pdf~)\n"
            "b.pdf: http://new/ (unchanged)\n"
            "c.pdf: no base URL -> http://new/ (incremental, backup c.pdf~)\n"
            "  warning: its certification permits only filling in forms: validators may report the change\n");
  EXPECT_EQ(result.err.count('\n'), 3) << result.err.toStdString();  // a setting's warning, d.pdf, the closing line
  EXPECT_EQ(RunProgram(inPlace + QStringList{"--quiet"}).out, "");
  EXPECT_THAT(RunProgram(ProbeRun({"--dry-run", "--jobs", "1", "-d", "out", "a.pdf", "b.pdf"})).out.toStdString(),
              testing::AllOf(HasSubstr("(incremental, to out/a.pdf)"), HasSubstr("(unchanged, replaces out/b.pdf)")));
}

TEST(OnlyIf, ChoosesByWhatTheFilesHold) {
  QDir().mkdir("in");
  const std::pair<const char*, const char*> rows[] = {{"none", "done skipped skipped"},
                                                      {"differs", "done skipped done"},
                                                      {"http://old/", "skipped skipped done"},
                                                      {"http://nobody/", "skipped skipped skipped"}};
  for (const auto& [condition, statuses] : rows) {
    WriteFile("in/a.pdf", kNone);
    WriteFile("in/b.pdf", kNew);
    WriteFile("in/c.pdf", kOld);
    const ProgramResult result =
        RunProgram(ProbeRun({"--only-if", condition, "--in-place", "--recursive", "in", "--report", "-"}));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(Statuses(result.out).join(' '), statuses) << condition;
    EXPECT_EQ(ReadReport(result.out)["in/b.pdf"]["reason"].toString(), condition == QByteArray("differs")
                                                                           ? "the actions change nothing in it"
                                                                           : "its base URL is 'http://new/'");
    // Thousands of files may be left out.
    EXPECT_EQ(result.err.count(".pdf"), 0) << result.err.toStdString();
    EXPECT_EQ(BaseUrlOf("in/c.pdf"), QByteArray(statuses).endsWith("done") ? "http://new/" : "http://old/");
    EXPECT_EQ(ReadFile("in/b.pdf"), kNew);
  }
}

TEST(OnlyIf, DiffersIsAboutAllThatTheActionsChange) {
  const QByteArray link = "/Annots[<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(a.html)>>>>]";
  WriteFile("links.pdf", MakePdf({}, {}, link));
  WriteFile("none.pdf", kNone);
  const ProgramResult result = RunProgram({"make-links-absolute", "--set", "base=http://x/", "--only-if", "differs",
                                           "--in-place", "--report", "-", "links.pdf", "none.pdf"});
  EXPECT_EQ(Statuses(result.out), QStringList({"done", "skipped"})) << result.err.toStdString();
}

TEST(Output, AFolderKeepsFilesThatAreNoEarlierResults) {
  const QByteArray foreign = QByteArray(kOld).replace("http://old/", "http://was/");
  WriteFile("mine.pdf", kOld);
  WriteFile("new.pdf", kOld);
  WriteFile("empty.pdf", "");
  QDir().mkdir("out");
  WriteFile("out/mine.pdf", foreign);
  WriteFile("out/empty.pdf", foreign);
  const QStringList run = ProbeRun({"-d", "out", "mine.pdf", "new.pdf", "empty.pdf"});
  for (const char* earlier : {"none", "a result"}) {
    const ProgramResult result = RunProgram(run);
    EXPECT_EQ(result.code, 1) << earlier;
    EXPECT_EQ(result.err.count("--force replaces it"), 2) << earlier << result.err.toStdString();
    EXPECT_EQ(ReadFile("out/mine.pdf") + ReadFile("out/empty.pdf"), foreign + foreign) << earlier;
    EXPECT_EQ(BaseUrlOf("out/new.pdf"), "http://new/") << earlier;
  }
  EXPECT_THAT(RunProgram(run + QStringList("--force")).err.toStdString(), HasSubstr("2 done"));
  EXPECT_EQ(BaseUrlOf("out/mine.pdf"), "http://new/");
}

TEST(Output, AFileThatIsThereIsReplacedByForceOnly) {
  WriteFile("a.pdf", kNone);
  WriteFile("there.pdf", kOld);
  const QStringList run = ProbeRun({"--report", "r.jsonl", "--resume", "r.jsonl", "a.pdf", "-o"});
  EXPECT_EQ(RunProgram(run + QStringList{"there.pdf"}).code, 2);
  EXPECT_EQ(ReadFile("there.pdf"), kOld);
  EXPECT_EQ(RunProgram(run + QStringList{"there.pdf", "--force"}).code, 0);
  EXPECT_EQ(BaseUrlOf("there.pdf"), "http://new/");
  EXPECT_EQ(RunProgram(run + QStringList{"there.pdf"}).code, 0) << "the resumed run has made it";
}

TEST(Backup, EveryOriginalIsKeptWholeAndNoneIsReplaced) {
  WriteFile("a.pdf", kNone);
  WriteFile("same.pdf", kNew);
  WriteFile("bad.pdf", "text");
  WriteFile("a.pdf.bak", "mine");
  chmod("a.pdf", 0640);
  struct stat original = {};
  ASSERT_EQ(stat("a.pdf", &original), 0);
  const auto run = [](const char* url) {
    QStringList arguments =
        ProbeRun({"--in-place", "--backup", ".bak", "--report", "-", "a.pdf", "same.pdf", "bad.pdf"});
    arguments.replaceInStrings("http://new/", url);
    return ReadReport(RunProgram(arguments).out)["a.pdf"]["backup"].toString();
  };
  EXPECT_EQ(run("http://new/"), "a.pdf (1).bak");
  const QByteArray second = ReadFile("a.pdf");
  WriteFile("same.pdf", kNew);
  EXPECT_EQ(run("http://next/"), "a.pdf (2).bak");
  EXPECT_EQ(run("http://next/"), "");  // nothing left to change

  EXPECT_EQ(ReadFile("a.pdf.bak"), "mine");
  EXPECT_EQ(ReadFile("a.pdf (1).bak"), kNone);
  EXPECT_EQ(ReadFile("a.pdf (2).bak"), second);
  struct stat kept = {};
  ASSERT_EQ(stat("a.pdf (1).bak", &kept), 0);
  EXPECT_EQ(kept.st_mode, original.st_mode);
  EXPECT_EQ(kept.st_mtim.tv_sec, original.st_mtim.tv_sec);
  EXPECT_EQ(kept.st_nlink, 1U);
  EXPECT_EQ(Names(), QStringList({"a.pdf", "a.pdf (1).bak", "a.pdf (2).bak", "a.pdf.bak", "bad.pdf", "same.pdf",
                                  "same.pdf.bak"}));
}

TEST(Backup, OfAFileWithOtherNamesIsACopyAndThatOfAKilledRunServesAgain) {
  QDir().mkdir("other");
  WriteFile("linked.pdf", kNone);
  ASSERT_EQ(link("linked.pdf", "other/name.pdf"), 0);
  WriteFile("killed.pdf", kNone);
  ASSERT_EQ(link("killed.pdf", "killed.pdf~"), 0);
  WriteFile("target.pdf", kNone);
  QFile::link("../target.pdf", "other/link.pdf");
  EXPECT_EQ(RunProgram(ProbeRun({"--in-place", "--backup", "~", "linked.pdf", "killed.pdf", "other/link.pdf"})).code,
            0);
  WriteFile("other/name.pdf", "changed in place");
  for (const char* backup : {"linked.pdf~", "killed.pdf~", "other/link.pdf~"}) {
    EXPECT_EQ(ReadFile(backup), kNone) << backup;
    EXPECT_FALSE(QFileInfo(backup).isSymLink()) << backup;
  }
  EXPECT_FALSE(QFile::exists("killed.pdf (1)~"));
  EXPECT_EQ(BaseUrlOf("target.pdf"), "http://new/");
}

TEST(Backup, WithoutItNothingIsSaved) {
  QDir().mkdir("in");
  const QString longName = "in/" + QString(250, 'n') + ".pdf";
  WriteFile(longName, kNone);
  const ProgramResult result = RunProgram(ProbeRun({"--in-place", "--backup", ".bak", longName}));
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err.toStdString(), HasSubstr("cannot make the backup"));
  EXPECT_EQ(ReadFile(longName), kNone);
  EXPECT_EQ(Names("in").size(), 1);
}

// The saved file of either kind of output.
QString SavedFile() {
  return QFile::exists("out") ? "out/f3.pdf" : "f3.pdf";
}

void RemoveKeys() {
  const QString report = QFile::exists("r.json") ? "r.json" : "r.jsonl";
  QByteArray text = ReadFile(report);
  for (int at = 0; (at = text.indexOf(",\"job\"")) >= 0;) text.remove(at, text.indexOf(",\"warnings\"", at) - at);
  WriteFile(report, text);
}

TEST(Resume, LeavesOutWhatTheSameJobHasDoneAndIsAsItWasLeft) {
  const struct {
    void (*change)(QStringList& run);  // between two runs
    int worked;                        // how many files the second one does
    const char* note;
  } rows[] = {{[](QStringList&) {}, 0, "5 done before"},
              {[](QStringList& run) { run.replaceInStrings("http://new/", "http://corrected/"); }, 5,
               "done again: 5 (they were done with other actions or settings)"},
              {[](QStringList&) { SetTime(SavedFile(), QDateTime::fromSecsSinceEpoch(1000000000)); }, 1,
               "done again: 1 (they were changed or removed since)"},
              {[](QStringList&) { WriteFile(SavedFile(), ReadFile(SavedFile()) + '\n'); }, 1, "done again: 1"},
              {[](QStringList&) { RemoveKeys(); }, 5, "done again: 5 (the report does not say"}};
  for (const char* report : {"r.json", "r.jsonl"}) {
    for (const QStringList& output : {QStringList{"--in-place"}, QStringList{"--output-dir", "out"}}) {
      for (const auto& row : rows) {
        for (const char* old : {"log", "r.json", "r.jsonl"}) QFile::remove(old);
        QDir("out").removeRecursively();
        QStringList files;
        for (int i = 0; i < 5; ++i) files += QString("f%1.pdf").arg(i);
        for (const QString& file : files) WriteFile(file, kNone);
        QStringList run = ProbeRun(output + QStringList{"--set", "log=log", "--report", report, "--resume", report});
        EXPECT_EQ(RunProgram(run + files).code, 0);
        QFile::remove("log");
        row.change(run);
        const ProgramResult result = RunProgram(run + files);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(ReadFile("log").count("work"), row.worked) << row.note << report << output[0].toStdString();
        EXPECT_THAT(result.err.toStdString(), HasSubstr(row.note));
        const auto records = ReadReport(ReadFile(report));
        EXPECT_EQ(records.size(), files.size());
        EXPECT_TRUE(report == QByteArray("r.jsonl") || ReadFile(report).count("\"file\"") == files.size());
        const QString folder = output[0] == "--in-place" ? "" : "out/";
        const QByteArray url = run.filter("baseUrlString").first().section('=', 1).toUtf8();
        for (const QString& file : files) EXPECT_EQ(BaseUrlOf(folder + file), url) << file.toStdString();
      }
    }
  }
}

TEST(Resume, ValuesMadeForEachFileBelongToTheJob) {
  QDir().mkpath("site/sub");
  WriteFile("site/sub/a.pdf", kNone);
  QStringList run = ProbeRun({"--set-each", "baseUrlString=http://x/{folder}/", "--recursive", "--in-place", "--report",
                              "r.jsonl", "--resume", "r.jsonl"});
  run.removeAt(run.indexOf("baseUrlString=http://new/") - 1);
  run.removeAll("baseUrlString=http://new/");
  for (const auto& [folder, url] : {std::pair("site", "http://x/sub/"), std::pair("site/sub", "http://x/")}) {
    EXPECT_EQ(RunProgram(run + QStringList{folder}).code, 0);
    EXPECT_EQ(BaseUrlOf("site/sub/a.pdf"), url);
  }
}

TEST(Resume, AfterAKillOnlyWhatIsMissingIsDone) {
  QStringList files;
  for (int i = 0; i < 20; ++i) files += QString("slow%1.pdf").arg(i, 2, 10, QChar('0'));
  for (const QString& file : files) WriteFile(file, kNone);
  const QStringList run = ProbeRun({"--in-place", "--backup", "~", "--report", "r.jsonl", "--resume", "r.jsonl"});
  const auto process = StartProgram(run + files);
  WaitForLines("r.jsonl", 4);
  kill(-static_cast<pid_t>(process->processId()), SIGKILL);
  FinishProgram(*process);
  EXPECT_EQ(RunProgram(run + files).code, 0);
  for (const QString& file : files) {
    EXPECT_EQ(BaseUrlOf(file), "http://new/");
    EXPECT_EQ(ReadFile(file + '~'), kNone) << file.toStdString();
  }
  EXPECT_EQ(Names().filter(" (1)"), QStringList());
  EXPECT_EQ(ReadReport(ReadFile("r.jsonl")).size(), files.size());
}

}  // namespace
