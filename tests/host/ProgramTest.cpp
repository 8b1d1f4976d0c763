// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>

#include "tests/support/ProgramRun.h"

using testing::HasSubstr;

namespace {

// Its catalog is in the trailer, where no update can change it.
QByteArray MakeSignedPdfToRewrite() {
  return MakeSignedPdf().replace("/Root 1 0 R",
                                 "/Root<</Type/Catalog/Pages 2 0 R/AcroForm<</SigFlags 3/Fields[4 0 R]>>>>");
}

const QStringList kSet{"run", "--action", "Set Base URL", "--set", "baseUrlString=http://new/"};

QString ProbeTools() {
  return QFileInfo(PROBEACTION_FILE).path();
}

// An action list as the dialogs write it.
void WriteList(const QString& file, const QString& name, const QStringList& actions) {
  QSettings ini(file, QSettings::IniFormat);
  ini.setValue("SequenceName", name);
  ini.setValue("SequenceCategory", "Tests");
  ini.setValue("IOSettings", 0);
  for (int i = 0; i < actions.size(); ++i) {
    ini.setValue(QString("ActionName%1").arg(i), actions[i]);
    ini.setValue(QString("ActionPrefs%1").arg(i), QVariantMap{{"baseUrlString", QString("http://%1/").arg(i)}});
  }
}

TEST(Program, WhatCannotBeLoadedIsCode3AndTouchesNothing) {
  WriteFile("a.pdf", MakePdf());
  WriteFile("noise.xqq", "\x7F\n\n[[[");
  WriteList("unknown.xqq", "Unknown", {"Set Base URL", "No Such Action"});
  WriteList("empty.xqq", "Empty", {});
  QSettings("badprefs.xqq", QSettings::IniFormat).setValue("ActionName0", "Set Base URL");
  QSettings("badprefs.xqq", QSettings::IniFormat).setValue("ActionPrefs0", "text");
  WriteFile("tornprefs.xqq",
            "[General]\nActionName0=Set Base URL\nActionPrefs0=@Variant(\\0\\0\\0\\b\\0\\0\\0\\x1\\0)\n");
  QDir().mkdir("tools");
  WriteFile("tools/broken.so", "no library");
  const std::pair<QStringList, const char*> rows[] = {
      {{"run", "--action", "No Such Action"}, "Unknown action 'No Such Action'"},
      {{"run", "--action", "set base url"}, "Did you mean 'Set Base URL'?"},
      {{"run", "--list", "./unknown.xqq"}, "Unknown action 'No Such Action'"},
      {{"run", "--list", "./missing.xqq"}, "no such file"},
      {{"run", "--list", "No Such List"}, "no action list 'No Such List'"},
      {{"run", "--list", "./noise.xqq"}, "noise.xqq"},
      {{"run", "--list", "./empty.xqq"}, "no actions"},
      {{"run", "--list", "./badprefs.xqq"}, "damaged"},
      {{"run", "--list", "./tornprefs.xqq"}, "damaged"},
      {{"run", "--action", "Set Base URL", "--tools-dir", "tools"}, "broken.so"},
      {{"run", "--action", "Set Base URL", "--tools-dir", "nowhere"}, "nowhere"},
      {{"run", "--action", "Set Base URL", "--set", "baseUrlString=http://x/", "--pdf-library", "nowhere"},
       "PDF library"},
      {{"run", "--action", "Set Base URL", "--set", "baseUrlString=http://x/", "--pdf-library", SETBASEURL_FILE},
       "PDF library"},
      {{"run", "--action", "Set Base URL", "--set", "baseUrlString=http://x/", "--jobs", "0", "--pdf-library",
        "nowhere"},
       "PDF library"}};
  for (const auto& [arguments, message] : rows) {
    WriteFile("r.jsonl", "{}\n");
    const ProgramResult result = RunProgram(arguments + QStringList{"--in-place", "--report", "r.jsonl", "a.pdf"});
    EXPECT_EQ(ReadFile("r.jsonl"), "{}\n");
    EXPECT_EQ(result.code, 3) << arguments.join(' ').toStdString() << result.err.toStdString();
    EXPECT_THAT(result.err.toStdString(), HasSubstr(message));
  }
  EXPECT_EQ(ReadFile("a.pdf"), MakePdf());
  EXPECT_EQ(RunProgram({"show", "--pdf-library", "nowhere", "a.pdf"}).code, 3);
  QDir().mkdir("notools");
  const ProgramResult none = RunProgram({"actions", "--tools-dir", "notools"});
  EXPECT_EQ(none.code, 3);
  EXPECT_THAT(none.err.toStdString(), HasSubstr("No plug-in is in notools."));
}

TEST(Program, DocumentErrorsHaveAReasonAndStopNothing) {
  QDir().mkdir("in");
  QDir().mkpath("out/taken.pdf");
  WriteFile("in/good.pdf", MakePdf());
  WriteFile("in/taken.pdf", MakePdf());
  WriteFile("in/text.pdf", "no PDF at all");
  WriteFile("in/empty.pdf", "");
  WriteFile("in/hopeless.pdf", "%PDF-1.4\nnothing more");
  WriteFile("in/signed.pdf", MakeSignedPdfToRewrite());
  ASSERT_EQ(QProcess::execute("qpdf", {"--encrypt", "user", "owner", "256", "--", "in/good.pdf", "in/locked.pdf"}), 0);
  WriteFile("out/own.pdf", MakePdf());
  ASSERT_EQ(mkfifo("in/pipe.pdf", 0600), 0);
  const QStringList files{"in/good.pdf",   "in/missing.pdf", "in/text.pdf", "in/empty.pdf",  "in/hopeless.pdf", "in",
                          "in/locked.pdf", "in/taken.pdf",   "out/own.pdf", "in/signed.pdf", "in/pipe.pdf"};
  const std::pair<const char*, const char*> rows[] = {
      {"in/missing.pdf", "no such file"},
      {"in/text.pdf", "not a PDF"},
      {"in/empty.pdf", "not a PDF"},
      {"in/hopeless.pdf", "damaged beyond repair: unable to find trailer dictionary"},
      {"in", "is a folder"},
      {"in/pipe.pdf", "not a regular file"},
      {"in/locked.pdf", "a password is needed"},
      {"in/taken.pdf", "cannot write"},
      {"out/own.pdf", "would overwrite an input"},
      {"in/signed.pdf", "break the signatures"}};
  const ProgramResult result = RunProgram(kSet + QStringList{"--output-dir", "out", "--report", "r.json"} + files);
  EXPECT_EQ(result.code, 1);
  const auto report = ReadReport(ReadFile("r.json"));
  for (const auto& [file, reason] : rows) {
    EXPECT_THAT(report[file]["reason"].toString().toStdString(), HasSubstr(reason)) << file;
    EXPECT_THAT(result.err.toStdString(), HasSubstr(std::string(file) + ": ")) << file;
  }
  EXPECT_EQ(report.size(), files.size());
  EXPECT_EQ(report["in/good.pdf"]["status"].toString(), "done");
  EXPECT_EQ(report["in/good.pdf"]["baseUrlAfter"].toString(), "http://new/");
  EXPECT_EQ(BaseUrlOf("out/good.pdf"), "http://new/");
  EXPECT_EQ(ReadFile("out/own.pdf"), MakePdf());
  EXPECT_EQ(QDir("out").entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList({"good.pdf", "own.pdf", "taken.pdf"}));
}

TEST(Program, AFullDiskKeepsTheOriginal) {
  WriteFile("large.pdf",
            MakePdf("/X 4 0 R", {"<</Length 3000000>>stream\n" + QByteArray(3000000, 'x') + "\nendstream"}));
  const QByteArray large = ReadFile("large.pdf");
  const auto runLimited = [](const QString& blocks, const QStringList& files) {
    PrepareToRun();
    QProcess process;
    const QString script = QStringLiteral("trap '' XFSZ; ulimit -f %1; exec \"$0\" \"$@\"").arg(blocks);
    process.start("bash", QStringList{"-c", script, VORLANE_RUN_FILE} + kSet + files);
    return FinishProgram(process);
  };
  const ProgramResult full = runLimited("100", {"--in-place", "large.pdf"});
  EXPECT_EQ(full.code, 1) << full.err.toStdString();
  EXPECT_THAT(full.err.toStdString(), HasSubstr("large.pdf: "));
  EXPECT_TRUE(ReadFile("large.pdf") == large);
  const ProgramResult lost = runLimited("0", {"--in-place", "missing.pdf", "--report", "r.json"});
  EXPECT_THAT(lost.err.toStdString(), HasSubstr("Cannot write the report"));

  EXPECT_EQ(QDir(".").entryList(QDir::Files | QDir::Hidden), QStringList({"large.pdf"}));
}

TEST(Program, SignedDocuments) {
  WriteFile("signed.pdf", MakeSignedPdf());
  WriteFile("certified.pdf", MakeSignedPdf(1));
  WriteFile("broken.pdf", MakeSignedPdfToRewrite());
  const ProgramResult refused = RunProgram(kSet + QStringList{"--in-place", "certified.pdf"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err.toStdString(), HasSubstr("certification permits no change"));
  EXPECT_EQ(ReadFile("certified.pdf"), MakeSignedPdf(1));
  const ProgramResult result = RunProgram(kSet + QStringList{"--allow-breaking-signatures", "--in-place", "--report",
                                                             "r.json", "signed.pdf", "certified.pdf", "broken.pdf"});
  EXPECT_EQ(result.code, 0) << result.err.toStdString();
  auto report = ReadReport(ReadFile("r.json"));
  EXPECT_EQ(report["signed.pdf"]["saveMode"].toString(), "incremental");
  EXPECT_TRUE(report["signed.pdf"]["warnings"].toArray().isEmpty());
  EXPECT_TRUE(ReadFile("signed.pdf").startsWith(MakeSignedPdf()));
  EXPECT_THAT(report["certified.pdf"]["warnings"].toArray()[0].toString().toStdString(), HasSubstr("certification"));
  EXPECT_EQ(report["broken.pdf"]["saveMode"].toString(), "rewrite");
  EXPECT_THAT(report["broken.pdf"]["warnings"].toArray()[0].toString().toStdString(),
              HasSubstr("breaks its signatures"));
}

TEST(Program, ListsByNameAndByFile) {
  const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + "/nolva software/PDF Tools/Actions/";
  ASSERT_TRUE(QDir().mkpath(folder));
  WriteList(folder + "My_List.xqq", "My List", {"Set Base URL", "Set Base URL"});
  WriteList(folder + "twin1.xqq", "Twin", {"Set Base URL"});
  WriteList(folder + "twin2.xqq", "Twin", {"Set Base URL"});
  for (const QString& name : {QString("My List"), QString("My_List"), QString("My_List.xqq"), folder + "My_List.xqq"}) {
    WriteFile("a.pdf", MakePdf());
    const ProgramResult result = RunProgram({"run", "--list", name, "--in-place", "a.pdf"});
    EXPECT_EQ(result.code, 0) << name.toStdString() << result.err.toStdString();
    EXPECT_EQ(BaseUrlOf("a.pdf"), "http://1/");
  }
  EXPECT_THAT(RunProgram({"run", "--list", "Twin", "--in-place", "a.pdf"}).err.toStdString(), HasSubstr("Several"));
  EXPECT_EQ(RunProgram({"run", "--list", "twin2", "--in-place", "a.pdf"}).code, 0);

  WriteFile("gap.xqq",
            "\xef\xbb\xbf[General]\n; a comment\nActionName0=Make Links Absolute\nActionName2=No Such Action\n");
  const ProgramResult gap = RunProgram({"run", "--list", "./gap.xqq", "--in-place", "a.pdf"});
  EXPECT_EQ(gap.code, 0) << gap.err.toStdString();
  EXPECT_THAT(gap.err.toStdString(), HasSubstr("action 1 is missing"));
  const QByteArray before = ReadFile("a.pdf");
  WriteFile("lacks.xqq", "[General]\nActionName0=Set Base URL\n");
  const ProgramResult lacks = RunProgram({"run", "--list", "./lacks.xqq", "--in-place", "--quiet", "a.pdf"});
  EXPECT_EQ(lacks.code, 2);
  EXPECT_THAT(lacks.err.toStdString(), HasSubstr("lacks the setting 'baseUrlString'"));
  EXPECT_EQ(ReadFile("a.pdf"), before);

  const ProgramResult text = RunProgram({"lists"});
  EXPECT_THAT(text.out.toStdString(), HasSubstr("My List\tTests\tSet Base URL, Set Base URL\n"));
  const QJsonArray json = QJsonDocument::fromJson(RunProgram({"lists", "--json"}).out).array();
  EXPECT_EQ(json[0]["actions"][1]["settings"]["baseUrlString"].toString(), "http://1/");
  WriteFile(folder + "noise.xqq", "x");
  const ProgramResult noisy = RunProgram({"lists"});
  EXPECT_EQ(noisy.code, 3);
  EXPECT_EQ(noisy.out, text.out);
}

TEST(Program, ShowsActionsHelpVersionAndUrls) {
  EXPECT_EQ(RunProgram({"actions"}).out,
            "Make Links Absolute\tDocument Properties\t15\tAction_MakeLinksAbsolute.html\tmake-links-absolute\tbase "
            "removeBase\n"
            "Set Base URL\tDocument Properties\t15\tAction_SetBaseUrl.html\tset-base-url\tbaseUrlString\n");
  EXPECT_EQ(RunProgram({"actions"}).err, "");
  const ProgramResult probe = RunProgram({"actions", "--tools-dir", QFileInfo(PROBEACTION_FILE).path()});
  EXPECT_EQ(probe.code, 0);
  EXPECT_THAT(probe.err.toStdString(),
              testing::MatchesRegex("[^\n]*Probe: :/Vorlane/Resources/HelpFiles/Probe.html is not [^\n]*\n"
                                    "[^\n]*Probe: :/Vorlane/Resources/Tools/Probe_Selected.png is not [^\n]*\n"));
  const QJsonArray json = QJsonDocument::fromJson(RunProgram({"actions", "--json"}).out).array();
  EXPECT_EQ(json[1]["helpPage"].toString(), ":/Vorlane/Resources/HelpFiles/Action_SetBaseUrl.html");
  EXPECT_EQ(json[1]["icons"].toArray().size(), 3);
  for (const char* command : {"actions", "show", "links", "run", "report", "split", "clean", "lists", "edit", "help",
                              "set-base-url", "make-links-absolute"}) {
    EXPECT_THAT(RunProgram({command, "--help"}).out.toStdString(),
                HasSubstr("Examples:\n  vorlane-run " + std::string(command)));
  }
  EXPECT_THAT(RunProgram({"--version"}).out.toStdString(), testing::MatchesRegex("vorlane-run [0-9.]+\n"));
  EXPECT_THAT(RunProgram({"run", "--help"}).out.toStdString(), HasSubstr("vorlane-run run [options] FILE..."));
  QProcess displayless;
  displayless.start(
      "env", {"-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM", VORLANE_RUN_FILE, "edit", "--help"});
  EXPECT_EQ(FinishProgram(displayless).code, 0);
  WriteFile("a.pdf", MakePdf("/URI<</Base(http://old/)>>"));
  WriteFile("-b\n.pdf", MakePdf());
  const ProgramResult shown = RunProgram({"show", "a.pdf", "missing.pdf", "--", "-b\n.pdf"});
  EXPECT_EQ(shown.code, 1);
  EXPECT_EQ(shown.out, "a.pdf\thttp://old/\n-b\\x0A.pdf\t\n");
  EXPECT_EQ(shown.err, "missing.pdf: no such file\n");

  QProcess closed;
  closed.start("bash", {"-c", "\"$0\" actions --json | true; exit ${PIPESTATUS[0]}", VORLANE_RUN_FILE});
  EXPECT_LE(FinishProgram(closed).code, 1);
}

TEST(Program, ADisplayThatCannotBeReachedIsCode3) {
  for (const QString& setting : {QStringLiteral("QT_QPA_PLATFORM=unheard-of"), QStringLiteral("DISPLAY=:nowhere")}) {
    QProcess edit;
    edit.start("env", {"-u", "QT_QPA_PLATFORM", "-u", "WAYLAND_DISPLAY", "DISPLAY=:nowhere", setting, VORLANE_RUN_FILE,
                       "edit", "--action", "Set Base URL"});
    const ProgramResult result = FinishProgram(edit);
    EXPECT_EQ(result.code, 3) << setting.toStdString();
    EXPECT_THAT(result.err.toStdString(), HasSubstr("vorlane-run: The display cannot be used.\n"));
  }
}

TEST(Program, EditHandsTheDialogWhatTheHostWould) {
  WriteFile("a.pdf", MakePdf("/URI<</Base(http://old/)>>"));
  WriteList("l.xqq", "L", {"Probe", "Probe"});
  const QByteArray list = ReadFile("l.xqq");
  const QStringList edit{"edit", "--tools-dir", ProbeTools()};
  const std::pair<const char*, const char*> contexts[] = {
      {"main", "VorlaneClass"}, {"preview", "VorlanePreviewClass"}, {"standalone", "none"}};
  for (const auto& [context, parent] : contexts) {
    const ProgramResult result = RunProgram(
        edit + QStringList{"--action", "Probe", "--set", "accept=1", "--context", context, "--document", "a.pdf"});
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    const QJsonObject settings = QJsonDocument::fromJson(result.out).object();
    EXPECT_EQ(settings["context"].toString(), parent);
    EXPECT_EQ(settings["document"].toString(), "http://old/");
    EXPECT_TRUE(settings["skip"].toBool());
  }
  const ProgramResult cancelled = RunProgram(edit + QStringList{"--list", "./l.xqq", "--index", "1"});
  EXPECT_EQ(cancelled.code, 1);
  EXPECT_TRUE(cancelled.out.isEmpty());
  EXPECT_EQ(ReadFile("l.xqq"), list);
  EXPECT_EQ(RunProgram(edit + QStringList{"--list", "./l.xqq", "--index", "2"}).code, 3);
  EXPECT_EQ(RunProgram(edit + QStringList{"--action", "Probe", "--document", "missing.pdf"}).code, 3);

  QSettings("l.xqq", QSettings::IniFormat).setValue("ActionPrefs1", QVariantMap{{"accept", true}});
  EXPECT_EQ(RunProgram(edit + QStringList{"--list", "./l.xqq", "--index", "1"}).code, 0);
  const QSettings stored("l.xqq", QSettings::IniFormat);
  EXPECT_EQ(stored.value("ActionPrefs1").toMap()["context"].toString(), "VorlaneClass");
  EXPECT_EQ(stored.value("ActionPrefs0").toMap()["baseUrlString"].toString(), "http://0/");
  EXPECT_EQ(stored.value("SequenceName").toString(), "L");
}

}  // namespace
