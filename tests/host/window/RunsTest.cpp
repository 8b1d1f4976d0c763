// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <QDir>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTimer>

#include "host/actions/UrlCheck.h"
#include "host/base/PdfLibrary.h"
#include "host/window/core/BatchRun.h"
#include "host/window/core/FactsReader.h"
#include "host/window/core/Preview.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/core/RunArguments.h"
#include "tests/host/window/WindowTools.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using State = FileState;

// Answers `show` for each file, but crashes or hangs at files that are named so, after the files before them.
constexpr char kFragile[] = R"sh(
for list; do :; done
tr '\0' '\n' <"$list" | while read -r file; do
  case $file in
    *crash*) exit 99 ;;
    *hang*) sleep 100 ;;
    *mute*) ;;
    *) echo "{\"file\":\"$file\",\"pages\":1,\"error\":null}" ;;
  esac
done || kill -KILL $$)sh";

QString Sample(const char* name) {
  QString copy = Here(name);
  QFile::copy(QStringLiteral(VORLANE_SAMPLES "/") + QLatin1String(name), copy);
  return copy;
}

State StateOf(const FileTableModel& model, const QString& path) {
  return model.Row(model.RowOf(path)).state;
}

std::string ReasonOf(const FileTableModel& model, const QString& path) {
  return model.Row(model.RowOf(path)).reason.toStdString();
}

// A run and what it said of the files.
class WatchedRun {
 public:
  WatchedRun() {
    QObject::connect(&run, &BatchRun::filesChanged, [this](const QVector<FileOutcome>& some) {
      for (const FileOutcome& outcome : some) {
        // Each file waits first and has one outcome.
        EXPECT_EQ(outcome.change.state == State::kWaiting, !outcomes.contains(outcome.change.path));
        EXPECT_TRUE(!outcomes.contains(outcome.change.path) || Of(outcome.change.path) == State::kWaiting);
        outcomes[outcome.change.path] = outcome;
      }
    });
    QObject::connect(&run, &BatchRun::finished, [this](const BatchSummary& last) {
      EXPECT_FALSE(summary) << "it finished twice";
      summary = last;
    });
  }
  BatchSummary Run(const QStringList& files, const ActionChoice& action, const OutputChoice& output = OutputChoice()) {
    Start(files, action, output);
    return Finish();
  }
  void Start(const QStringList& files, const ActionChoice& action, const OutputChoice& output = OutputChoice(),
             decltype(&BatchRun::Start) begin = &BatchRun::Start) {
    outcomes.clear();
    summary.reset();
    (run.*begin)(files, action, output);
    EXPECT_TRUE(run.IsRunning() && !summary);
  }
  BatchSummary Finish() {
    EXPECT_TRUE(Await([this] { return summary.has_value(); }));
    EXPECT_FALSE(run.IsRunning());
    EXPECT_EQ(run.Done(), run.Total());
    EXPECT_EQ(summary->done + summary->unchanged + summary->failed + summary->cancelled, run.Total());
    EXPECT_EQ(run.Unfinished().size(), summary->failed + summary->cancelled);
    return *summary;
  }
  State Of(const QString& file) const { return outcomes[file].change.state; }
  std::string ReasonOf(const QString& file) const { return outcomes[file].change.reason.toStdString(); }

  BatchRun run;
  QMap<QString, FileOutcome> outcomes;
  std::optional<BatchSummary> summary;
};

PreviewData PreviewOf(const QString& file, const ActionChoice& action, const OutputChoice& output = OutputChoice()) {
  Preview preview;
  std::optional<PreviewData> data;
  QObject::connect(&preview, &Preview::changed, [&](const PreviewData& last) {
    EXPECT_FALSE(data) << "it was shown twice";
    data = last;
  });
  preview.Request(Here("earlier.pdf"), action, output);
  preview.Request(file, action, output);
  EXPECT_TRUE(Await([&] { return data.has_value(); }));
  return *data;
}

}  // namespace

TEST(FactsReader, ReadsWhatFilesHold) {
  const Runner runner;
  FileTableModel model;
  FactsReader reader(model);
  const QString odd = MakePdfs({"\xFF\n\xF0\x9F\x98\x80.pdf"}, MakePdf("/URI<</Base(http://x/)>>")).constFirst();
  const QString encrypted = Sample("encrypted-user-password.pdf");
  const QString text = Sample("not-a-pdf.pdf");
  const QString certified = Sample("certified.pdf");
  model.Add(Files({odd, encrypted, text, certified, Here("vanished.pdf")}));
  ASSERT_TRUE(Await([&] { return reader.Left() == 0; }));
  EXPECT_EQ(StateOf(model, odd), State::kReady);
  EXPECT_EQ(model.Row(0).facts->baseUrl, QString("http://x/"));
  EXPECT_EQ(model.Row(0).facts->pages, 1);
  EXPECT_EQ(StateOf(model, encrypted), State::kNeedsPassword);
  EXPECT_EQ(StateOf(model, text), State::kUnreadable);
  EXPECT_GT(model.Row(model.RowOf(certified)).facts->certification, 0);
  EXPECT_THAT(ReasonOf(model, Here("vanished.pdf")), HasSubstr("not there"));

  reader.SetPasswords({"wrong", "tide"});
  ASSERT_TRUE(Await([&] { return reader.Left() == 0; }));
  EXPECT_EQ(StateOf(model, encrypted), State::kReady);
  EXPECT_TRUE(model.Row(model.RowOf(encrypted)).facts->encrypted);

  // What a run has said of a file stays.
  model.SetStates({{odd, State::kDone, {}}});
  WriteFile(odd, MakePdf());
  reader.Refresh({odd, Here("unknown.pdf")});
  ASSERT_TRUE(Await([&] { return reader.Left() == 0; }));
  EXPECT_EQ(StateOf(model, odd), State::kDone);
  EXPECT_EQ(model.Row(0).facts->baseUrl, std::nullopt);
}

TEST(FactsReader, LosesOnlyTheFilesOnWhichTheProgramCrashesOrHangs) {
  const Runner runner(kFragile);
  FileTableModel model;
  FactsReader reader(model, FactsReader::TimeLimits{60s, 300ms});
  QSignalSpy problems(&reader, &FactsReader::problem);
  QVector<FoundFile> files;
  for (int i = 0; i < 40; ++i) {
    const char* const what = i == 0 || i == 17 ? "crash" : i == 30 ? "hang" : i == 35 ? "mute" : "good";
    files.append({QStringLiteral("/f/%1%2").arg(what).arg(i), QString::number(i)});
  }
  model.Add(files);
  ASSERT_TRUE(Await([&] { return reader.Left() == 0; }));
  EXPECT_EQ(model.PathsWith(State::kReady).size(), 36);
  EXPECT_EQ(model.PathsWith(State::kUnreadable), (QStringList{"/f/crash0", "/f/crash17", "/f/hang30", "/f/mute35"}));
  EXPECT_THAT(ReasonOf(model, "/f/crash0"), HasSubstr("signal 9"));
  EXPECT_THAT(ReasonOf(model, "/f/hang30"), HasSubstr("did not answer"));
  EXPECT_TRUE(problems.isEmpty());
}

TEST(FactsReader, GivesUpWhenTheProgramCannotBeUsed) {
  MakePdfs({"a.pdf", "b.pdf", "c.pdf", "d.pdf"});
  for (const char* script : {"kill -KILL $$", "echo 'vorlane-run: No library.' >&2; exit 3", "missing"}) {
    const Runner runner(script);
    if (script == std::string("missing")) RunnerProcess::SetProgramFile("/nowhere/vorlane-run");
    FileTableModel model;
    FactsReader reader(model);
    QSignalSpy problems(&reader, &FactsReader::problem);
    model.Add(Files({"a.pdf", "b.pdf", "c.pdf", "d.pdf"}));
    ASSERT_TRUE(Await([&] { return reader.Left() == 0 && !problems.isEmpty(); })) << script;
    EXPECT_EQ(problems.size(), 1);
    EXPECT_TRUE(model.PathsWith(State::kReading).isEmpty());
    EXPECT_TRUE(model.PathsWith(State::kReady).isEmpty());
  }
}

TEST(FactsReader, PausesAndFollowsTheTable) {
  FileTableModel model;
  FactsReader reader(model);
  {
    const Runner hanging("exec sleep 100");
    model.Add(QVector<FoundFile>{{"/f/a", "1"}, {"/f/b", "2"}});
    ASSERT_TRUE(Await([&] { return model.PathsWith(State::kReading).size() == 2; }));
    reader.SetPaused(true);
    EXPECT_EQ(reader.Left(), 2);
  }
  const Runner runner(kFragile);
  model.Remove({0});
  reader.SetPaused(false);
  ASSERT_TRUE(Await([&] { return reader.Left() == 0; }));
  EXPECT_EQ(model.PathsWith(State::kReady), QStringList("/f/b"));
}

TEST(FactsReader, BeginsWhileMoreRowsKeepComing) {
  const Runner runner(kFragile);
  FileTableModel model;
  FactsReader reader(model);
  QTimer more;
  QObject::connect(&more, &QTimer::timeout, [&] {
    const QString name = QStringLiteral("/f/%1").arg(model.Count());
    model.Add(QVector<FoundFile>{{name, name}});
  });
  more.start(1);
  EXPECT_TRUE(Await([&] { return !model.PathsWith(State::kReady).isEmpty(); }));
  EXPECT_LT(model.Count(), 5000);  // so many would begin in any case
}

// What has no words of its own is shown as it is, in English.
TEST(RecordTexts, HaveWordsForWhatTheCommandLineReports) {
  QStringList messages{
      "is a folder (use --recursive for the files below it)",
      "its output a.pdf would overwrite a file that is not an earlier result of it (--force replaces it)",
      "its output out/a.pdf would overwrite an input",
      "cannot make the folder of its output out/a.pdf",
      "cannot be looked up: Permission denied",
      "hangs in the system and cannot be ended",
      "action 'Set Base URL': cannot write: a folder has that name",
      "Cannot make the output folder '/proc/x': No such file or directory",
      "Cannot use the action list 'a.xqq': it holds no actions",
      "Cannot write the action list 'a.xqq'."};
  for (int code = 0; code < 1000; ++code) messages += QLatin1String(PdfLibrary::ErrorMessage(code));
  for (const char* url : {"C:/x", "x", "http://a b/", "http://<", "http://%z", "http://", "http://[x/"}) {
    messages += CheckUrl(url, UrlUse::kOther).error;
  }
  for (const char* url : {"gopher://x/", "https://user:word@x/", "https://x/?q", "https://x/y"}) {
    for (const QString& warning : CheckUrl(url, UrlUse::kBaseOfViewers).warnings) messages += "'URL': " + warning;
  }
  for (const QString& message : qAsConst(messages)) {
    QString raw = message;
    raw[0] = raw[0].toUpper();
    const QString shown = RecordTexts::PlainReason(message);
    EXPECT_FALSE(shown == raw || shown == raw + QLatin1Char('.')) << shown.toStdString();
  }
}

// What people can do about it is not always the same.
TEST(RecordTexts, SayWhatIsDamaged) {
  const QString damaged = QStringLiteral("damaged beyond repair");
  for (const char* what : {": the file holds two documents", ": the encryption dictionary is damaged",
                           ": the font in object 20 is damaged"}) {
    EXPECT_NE(RecordTexts::PlainReason(damaged + QLatin1String(what)), RecordTexts::PlainReason(damaged)) << what;
  }
}

TEST(RunArguments, AreThoseOfTheCommandLine) {
  const Runner runner;
  OutputChoice folder;
  folder.inPlace = false;
  folder.folder = "/out";
  folder.allowBreakingSignatures = true;
  OutputChoice plain;
  plain.backupSuffix.clear();
  const struct {
    ActionChoice action;
    OutputChoice output;
    RunKind kind;
    const char* arguments;
  } cases[] = {
      {SetBaseUrl("https://x/"), OutputChoice(), RunKind::kRun,
       "set-base-url https://x/ --in-place --backup=.bak --report -"},
      {SetBaseUrl(""), plain, RunKind::kDryRun, "set-base-url --clear baseUrlString --in-place --dry-run --report -"},
      {SetBaseUrl("no scheme"), plain, RunKind::kRun, "set-base-url no scheme --unchecked --in-place --report -"},
      {ActionChoice::List("/l.xqq"), folder, RunKind::kRun,
       "run --list /l.xqq --output-dir=/out --allow-breaking-signatures --report -"},
      {ActionChoice::SettingsFile("/s.tsf"), plain, RunKind::kRun, "run --settings /s.tsf --in-place --report -"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(RunArguments(each.action, each.output, each.kind).join(' ').toStdString(), each.arguments);
  }
}

// What is copied does in a shell what the window does, with a few files and with many.
TEST(CommandText, DoesTheSameInAShell) {
  const Runner runner;
  for (const int more : {0, 12000}) {
    QStringList files = MakePdfs({"it's.pdf", "\xFF$(x)\n'\".pdf", "-dash.pdf"});
    for (int i = 0; i < more; ++i) files += Here(QByteArray(50, 'x') + QByteArray::number(i));
    OutputChoice output;
    output.backupSuffix.clear();
    const QString command = CommandText(SetBaseUrl("https://x/'"), output, files);
    EXPECT_EQ(command.startsWith("printf"), more > 0);
    WriteFile("command.sh", command.toUtf8());
    QProcess shell;
    shell.start("sh", {"command.sh"});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), more > 0 ? 1 : 0) << shell.readAllStandardError().left(2000).constData();
    for (int i = 0; i < 3; ++i) EXPECT_THAT(ReadFile(files[i]).toStdString(), HasSubstr("(https://x/')"));
  }
  OutputChoice locked;
  locked.passwords = QStringList("secret");
  EXPECT_FALSE(CommandText(SetBaseUrl("https://x/"), locked, {"/a"}).contains("secret"));
}

TEST(BatchRun, WritesWhatTheCommandLineWrites) {
  const Runner runner;
  const QStringList files = MakePdfs({"a.pdf", "\xFF\n.pdf", "out/b.pdf"});
  const QByteArray before = ReadFile("a.pdf");
  WriteFile("expected.pdf", before);
  ASSERT_EQ(RunProgram({"set-base-url", "https://x/", "--in-place", "expected.pdf"}).code, 0);
  WatchedRun watched;
  const BatchSummary summary = watched.Run(files + files, SetBaseUrl("https://x/"));
  EXPECT_EQ(summary.done, 3);
  EXPECT_TRUE(summary.error.isEmpty() && summary.messages.isEmpty());
  for (const QString& file : files) {
    EXPECT_EQ(ReadFile(file), ReadFile("expected.pdf"));
    EXPECT_EQ(ReadFile(file + ".bak"), before);
    EXPECT_EQ(watched.outcomes[file].backup, file + ".bak");
    EXPECT_EQ(watched.outcomes[file].baseUrl, QString("https://x/"));
  }
  EXPECT_EQ(watched.run.OutputFolders(), (QStringList{QDir::currentPath(), Here("out")}));
  QSignalSpy saved(&watched.run, &BatchRun::reportSaved);
  for (const char* name : {"r.json", "r.jsonl", "r.csv", "missing/r.json", "missing/r.csv"}) {
    saved.clear();
    watched.run.SaveReport(name);
    ASSERT_TRUE(Await([&] { return !saved.isEmpty(); }));
    EXPECT_EQ(saved[0][0].toString().isEmpty(), *name == 'r') << name;
  }
  EXPECT_EQ(ReadFile("r.csv"), RunProgram({"report", "--csv", "r.jsonl"}).out);
  EXPECT_EQ(ReadReport(ReadFile("r.json")), ReadReport(ReadFile("r.jsonl")));
  EXPECT_EQ(ReadReport(ReadFile("r.json")).keys(), QStringList(watched.outcomes.keys()));
  EXPECT_EQ(watched.Run(files, SetBaseUrl("https://x/")).unchanged, 3);
}

TEST(BatchRun, SaysWhyFilesFailAndTriesThemAgain) {
  const Runner runner;
  const QString encrypted = Sample("encrypted-user-password.pdf");
  const QString text = Sample("not-a-pdf.pdf");
  const QString certified = Sample("certified.pdf");
  const QString good = MakePdfs({"good.pdf"}).constFirst();
  WatchedRun watched;
  const BatchSummary summary =
      watched.Run({encrypted, text, good, certified, Here("vanished.pdf")}, SetBaseUrl("https://x/a"));
  EXPECT_EQ(summary.done, 1);
  EXPECT_EQ(summary.failed, 4);
  EXPECT_EQ(summary.needPassword, 1);
  EXPECT_EQ(watched.Of(encrypted), State::kNeedsPassword);
  EXPECT_THAT(watched.ReasonOf(certified), HasSubstr("allow breaking signatures"));
  EXPECT_EQ(watched.run.Unfinished(), (QStringList{encrypted, text, certified, Here("vanished.pdf")}));
  ASSERT_EQ(summary.messages.size(), 1);
  EXPECT_THAT(summary.messages[0].toStdString(), HasSubstr("does not end in a slash"));

  OutputChoice output;
  output.passwords = QStringList{"tide"};
  output.allowBreakingSignatures = true;
  watched.Start(watched.run.Unfinished(), SetBaseUrl("https://x/a"), output, &BatchRun::TryAgain);
  EXPECT_EQ(watched.run.Done(), 1);
  const BatchSummary both = watched.Finish();
  EXPECT_EQ(both.done, 3);
  EXPECT_EQ(both.failed, 2);
  EXPECT_EQ(watched.run.Unfinished(), (QStringList{text, Here("vanished.pdf")}));
  watched.run.SaveReport("r.jsonl");
  const auto report = ReadReport(ReadFile("r.jsonl"));
  EXPECT_EQ(report.size(), 5);
  for (const QString& file : {encrypted, good, certified}) EXPECT_EQ(report[file]["status"].toString(), "done");
  EXPECT_EQ(watched.Run({good}, SetBaseUrl("https://x/a")).unchanged, 1) << "a new run counts for itself";
}

TEST(BatchRun, CanBeCancelled) {
  const Runner runner;
  QList<QByteArray> names;
  for (int i = 0; i < 60; ++i) names += "slow" + QByteArray::number(i) + ".pdf";
  const QStringList files = MakePdfs(names);
  const QByteArray before = ReadFile(files[0]);
  WatchedRun watched;
  watched.Start(files, Probe());
  ASSERT_TRUE(Await([&] { return watched.run.Done() > 0; }));
  watched.run.Cancel();
  const BatchSummary summary = watched.Finish();
  EXPECT_TRUE(summary.wasCancelled);
  EXPECT_TRUE(summary.error.isEmpty());
  EXPECT_GT(summary.done, 0);
  EXPECT_GT(summary.cancelled, 0);
  for (const QString& file : files) EXPECT_EQ(ReadFile(file) == before, watched.Of(file) == State::kCancelled);
}

TEST(BatchRun, LosesOnlyTheFileOnWhichTheActionCrashes) {
  const Runner runner;
  const QStringList files = MakePdfs({"a.pdf", "abort.pdf", "b.pdf"});
  WatchedRun watched;
  EXPECT_EQ(watched.Run(files, Probe()).done, 2);
  EXPECT_THAT(watched.ReasonOf(files[1]), HasSubstr("crash"));
}

// Whatever becomes of the program, each file has an outcome and the run has a reason.
TEST(BatchRun, SurvivesItsProgram) {
  const QStringList files = MakePdfs({"a.pdf", "b.pdf"});
  const QByteArray record = "echo '{\"file\":\"" + files[0].toUtf8() + "\",\"status\":\"done\"}'; ";
  const struct {
    QByteArray script;
    int done;
    State other;
    const char* reason;
    const char* error;
  } cases[] = {
      {record + "kill -KILL $$", 1, State::kFailed, "not known", "signal 9"},
      {record + "exit 0", 1, State::kFailed, "says nothing", ""},
      {record + record + "echo garbage; exit 1", 1, State::kFailed, "cannot be read", "cannot be read"},
      {"echo 'vorlane-run: It has no scheme. Use --unchecked to take it all the same.' >&2; exit 2", 0,
       State::kCancelled, "could not begin", "It has no scheme."},
      {"", 0, State::kFailed, "says nothing", ""},
  };
  for (const auto& each : cases) {
    const Runner runner(each.script);
    WatchedRun watched;
    const BatchSummary summary = watched.Run(files, SetBaseUrl("https://x/"));
    EXPECT_EQ(summary.done, each.done) << each.script.constData();
    EXPECT_EQ(watched.Of(files[1]), each.other) << each.script.constData();
    EXPECT_THAT(watched.ReasonOf(files[1]), HasSubstr(each.reason));
    EXPECT_THAT(summary.error.toStdString(), HasSubstr(each.error));
    EXPECT_THAT(summary.error.toStdString(), testing::Not(HasSubstr("--unchecked")));
  }
  RunnerProcess::SetProgramFile("/nowhere/vorlane-run");
  EXPECT_THAT(WatchedRun().Run(files, SetBaseUrl("https://x/")).error.toStdString(), HasSubstr("install"));
}

TEST(BatchRun, RefusesChoicesThatCannotBeRun) {
  const Runner runner;
  const QStringList files = MakePdfs({"a.pdf"});
  OutputChoice noFolder;
  noFolder.inPlace = false;
  OutputChoice pdfBackup;
  pdfBackup.backupSuffix = ".pdf";
  const struct {
    QStringList files;
    ActionChoice action;
    OutputChoice output;
    const char* error;
  } cases[] = {
      {files, ActionChoice(), OutputChoice(), "Choose what to do"},
      {files, ActionChoice::List("missing.xqq"), OutputChoice(), "not there any more"},
      {files, SetBaseUrl("https://x/"), noFolder, "Choose a folder"},
      {files, SetBaseUrl("https://x/"), pdfBackup, "backups"},
      {{}, SetBaseUrl("https://x/"), OutputChoice(), "Add files"},
  };
  for (const auto& each : cases) {
    const BatchSummary summary = WatchedRun().Run(each.files, each.action, each.output);
    EXPECT_THAT(summary.error.toStdString(), HasSubstr(each.error));
    EXPECT_EQ(summary.cancelled, each.files.size());
  }
}

TEST(Preview, ShowsWhatWouldBecomeOfAFile) {
  const Runner runner;
  const QByteArray annotations =
      "/Annots[<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(ch.html)>>>>"
      "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(/root.html)>>>>"
      "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/A<</S/URI/URI(https://y/)>>>>]";
  const QString file = MakePdfs({"\xFF.pdf"}, MakePdf("/URI<</Base(http://old/)>>", {}, annotations)).constFirst();
  const QByteArray before = ReadFile(file);
  const PreviewData data = PreviewOf(file, SetBaseUrl("https://x/a"));
  EXPECT_EQ(data.file, file);
  EXPECT_TRUE(data.wouldChange);
  EXPECT_EQ(data.before, QString("http://old/"));
  EXPECT_EQ(data.after, QString("https://x/a"));
  EXPECT_EQ(data.saveMode, QString("incremental"));
  EXPECT_TRUE(data.error.isEmpty());
  ASSERT_EQ(data.warnings.size(), 1);
  EXPECT_THAT(data.warnings[0].toStdString(), HasSubstr("does not end in a slash"));
  ASSERT_EQ(data.links.size(), 2);
  EXPECT_EQ(data.relativeLinks, 2);
  EXPECT_EQ(data.disagreeing, 2);
  EXPECT_EQ(data.links[0].uri, QString("ch.html"));
  EXPECT_EQ(data.links[0].page, 1);
  EXPECT_EQ(data.links[0].target, QString("https://x/ch.html"));
  EXPECT_EQ(data.links[0].viewers["pdfium"], QString("https://x/ach.html"));
  EXPECT_FALSE(data.links[0].agree);

  // Without a base URL the file's own one no longer counts.
  const PreviewData cleared = PreviewOf(file, SetBaseUrl(""));
  EXPECT_EQ(cleared.after, QString());
  EXPECT_EQ(cleared.links.size(), 2);
  EXPECT_EQ(cleared.links[0].target, QString());
  EXPECT_EQ(PreviewOf(file, SetBaseUrl("http://old/")).wouldChange, false);
  EXPECT_THAT(PreviewOf(file, SetBaseUrl("no scheme")).warnings.join('\n').toStdString(), HasSubstr("No viewer"));
  EXPECT_EQ(ReadFile(file), before);
}

TEST(Preview, SaysWhyThereIsNone) {
  const Runner runner;
  const QString encrypted = Sample("encrypted-user-password.pdf");
  const PreviewData locked = PreviewOf(encrypted, SetBaseUrl("https://x/"));
  EXPECT_TRUE(locked.needsPassword);
  EXPECT_FALSE(locked.error.isEmpty());
  OutputChoice output;
  output.passwords = QStringList("tide");
  EXPECT_TRUE(PreviewOf(encrypted, SetBaseUrl("https://x/"), output).wouldChange);
  EXPECT_THAT(PreviewOf(Here("gone.pdf"), SetBaseUrl("https://x/")).error.toStdString(), HasSubstr("not there"));
  EXPECT_THAT(PreviewOf(encrypted, ActionChoice()).error.toStdString(), HasSubstr("Choose"));
  const Runner crashing("kill -SEGV $$");
  EXPECT_THAT(PreviewOf(encrypted, SetBaseUrl("https://x/")).error.toStdString(), HasSubstr("signal 11"));
}

TEST(Preview, WhatIsClearedIsNotShown) {
  const Runner runner("exec sleep 100");
  Preview preview;
  const QSignalSpy changed(&preview, &Preview::changed);
  QSignalSpy started(&preview, &Preview::started);
  preview.Request(Here("a.pdf"), SetBaseUrl("https://x/"), OutputChoice());
  ASSERT_TRUE(Await([&] { return !started.isEmpty(); }));
  preview.Clear();
  preview.Request(Here("b.pdf"), SetBaseUrl("https://x/"), OutputChoice());
  EXPECT_TRUE(Await([&] { return started.size() == 2; }));
  EXPECT_TRUE(changed.isEmpty());
}
