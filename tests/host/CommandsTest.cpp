// SPDX-License-Identifier: Apache-2.0
// Command lines as users type them: what is refused before a file is touched, and what is done.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include "tests/support/ProgramRun.h"

using testing::HasSubstr;

namespace {

const QByteArray kOld = "/URI<</Base(http://old/)>>";

// "~" stands for a space within a word.
QStringList Words(const char* text) {
  return QString::fromUtf8(text).split(' ', Qt::SkipEmptyParts).replaceInStrings("~", " ");
}

TEST(Commands, SlipsAreCode2AndTouchNothing) {
  for (const char* name : {"a.pdf", "b.pdf", "-dash.pdf"}) WriteFile(name, MakePdf(kOld));
  WriteFile("not.tsf", "neither");
  WriteFile("utf-16.txt", QByteArray("p\0w\0\n\0", 6));
  WriteFile("large.txt", QByteArray(64 * 1024 + 1, 'p'));
  WriteFile("r.jsonl", "");
  QDir().mkdir("d");
  const std::pair<const char*, const char*> rows[] = {
      {"run --action Set~Base~URL --set BaseUrlString=http://x/ --in-place a.pdf b.pdf",
       "Did you mean 'baseUrlString'?"},
      {"run --action Set~Base~URL --in-place a.pdf", "needs the setting 'baseUrlString'"},
      {"run --action Set~Base~URL --set baseUrlString= --in-place a.pdf", "use --clear baseUrlString"},
      {"run --action Set~Base~URL --set k --in-place a.pdf", "KEY=VALUE"},
      {"run --action Set~Base~URL --settings not.tsf --in-place a.pdf", "neither a tool settings file"},
      {"run --settings {} --in-place a.pdf", "do not name their action"},
      {"run --settings {\"ActionName\":\"B\"} --action Set~Base~URL --in-place a.pdf", "for the action 'B'"},
      {"run --settings {\"ActionName\":\"Set~Base~URL\",\"baseUrlString\":\"\"} --in-place a.pdf", "--clear"},
      {"run --list L --set a=b --in-place a.pdf", "'--list' excludes"},
      {"set-base-url a.pdf --in-place", "first argument is the base URL"},
      {"set-base-url --set BaseUrlString=http://x/ a.pdf --in-place", "Did you mean 'baseUrlString'?"},
      {"set-base-url http://x/ -o a.pdf b.pdf", "use '--force'"},
      {"set-base-url", "No base URL is given"},
      {"set-base-url http://x/ http://y/ a.pdf --in-place", "'http://y/' is a URL"},
      {"set-base-url --clear baseUrlString http://y/ a.pdf --in-place", "given by an option"},
      {"set-base-url example.org/a/ a.pdf --in-place", "no scheme"},
      {"set-base-url http://x/ a.pdf b.pdf -o out.pdf", "for one file, but 2"},
      {"set-base-url http://x/ a.pdf -o out.pdf --in-place", "exclude each other"},
      {"set-base-url http://x/ a.pdf --in-place --report b.pdf", "is not a report"},
      {"make-links-absolute http://x/ a.pdf --in-place", "a URL where a file is expected"},
      {"show -dash.pdf", "needs \"./\" before it"},
      {"set-base-url http://x/ --in-plaec a.pdf", "Did you mean '--in-place'?"},
      {"set-base-url http://x/ a.pdf --in-place --root d", "'--set-each' only"},
      {"set-base-url http://x/ --files-from - --password-file - --in-place", "standard input"},
      {"set-base-url --set-each baseUrlString=http://x/{dir}/ --in-place a.pdf", "{folder}, {name}, {stem} and {path}"},
      {"set-base-url --set-each baseUrlString=http://x/{folder}/ --in-place ./d/../a.pdf", "'--root DIR' is needed"},
      {"set-base-url --set-each baseUrlString=http://x/{folder}/ --root d --in-place a.pdf", "not below"},
      {"set-base-url --set-each baseUrlString=http://x/{folder}/ --root no --in-place a.pdf", "no folder 'no'"},
      {"set-base-uri http://x/ a.pdf --in-place", "Did you mean 'set-base-url'?"},
      {"shwo a.pdf", "Did you mean 'show'?"},
      {"--hepl", "Unknown option '--hepl'; see 'vorlane-run --help'. Did you mean '--help'?"},
      {"-dash", "Unknown option '-dash'"},
      {"help shwo", "Did you mean 'show'?"},
      {"help set~base~url", "Did you mean 'Set Base URL'?"},
      {"show --files-from a.pdf", "is a PDF file, not a list"},
      {"show --password-file a.pdf b.pdf", "is a PDF file, not a password file"},
      {"show --password-file utf-16.txt b.pdf", "it has NUL bytes"},
      {"show --password-file large.txt b.pdf", "larger than 64 KiB"},
      {"links --password a.pdf b.pdf", "'a.pdf' is a file"},
      {"run --settings a.pdf --in-place b.pdf", "is a PDF file, not a settings file"},
      {"report --files-from a.pdf r.jsonl", "is a PDF file, not a list"},
      {"split 2 --prefix a.pdf b.pdf", "'a.pdf' is a file"},
      {"lists add L --category= --action Set~Base~URL", "'--category' needs a name"},
      {"lists ad L", "Did you mean 'add'?"},
      {"lists add", "needs a list's name"},
      {"lists add L", "needs '--action'"},
      {"lists add L --action Set~Base~URL", "needs the setting"},
      {"lists --force", "for 'lists add'"},
      {"lists remove L first", "not the number of an action"},
      {"edit --action A --apply", "needs '--document'"},
      {"", "No command"},
      {"fly", "Unknown command 'fly'"},
      {"--bogus", "Unknown option"},
      {"run a.pdf --in-place", "'--list' or '--action'"},
      {"run --action A a.pdf", "'--output-dir' or '--in-place'"},
      {"run --action A --in-place", "No file"},
      {"run --action A --in-place --output-dir o a.pdf", "exclude each other"},
      {"run --action A --password p --password-file f --in-place a.pdf", "exclude each other"},
      {"run --action A --action B --in-place a.pdf", "given twice"},
      {"run --action A --set k=1 --set k=2 --in-place a.pdf", "given twice"},
      {"run --action A --in-place --jobs two a.pdf", "whole number"},
      {"run --action A --in-place --jobs 0 --timeout 3 a.pdf", "--timeout"},
      {"run --action A --output-dir= a.pdf", "needs a name"},
      {"run --action Probe --in-place --files-from nowhere", "nowhere"},
      {"run --action Probe --in-place --password-file nowhere a.pdf", "nowhere"},
      {"run --action Probe --in-place --resume nowhere a.pdf", "nowhere"},
      {"run --action Probe --in-place --resume a.pdf a.pdf", "not a report"},
      {"run --action Probe --in-place --report a.pdf a.pdf", "overwrite an input"},
      {"run --action Probe --in-place --report no/where a.pdf", "Cannot write the report"},
      {"run --action Probe --output-dir a.pdf/o a.pdf", "output folder"},
      {"edit", "'--action' or '--list'"},
      {"edit --list l.xqq", "need each other"},
      {"actions extra", "Unexpected argument 'extra'"},
      {"edit --action A --context attic", "--context"},
      {"actions --tools-dir", "Missing value"},
      {"run --action Probe --output-dir o --backup .bak a.pdf", "needs '--in-place'"},
      {"run --action Probe --in-place --backup= a.pdf", "needs a name"},
      {"run --action Probe --in-place --backup /x a.pdf", "'/'"},
      {"run --action Probe --in-place --backup -old.PDF a.pdf", ".pdf"},
      {"run --action Probe --in-place --only-if= a.pdf", "takes none, differs or a URL"},
      {"run --action Probe --in-place --only-if differ a.pdf", "Did you mean 'differs'?"},
      {"run --action Probe -o b.pdf --dry-run a.pdf", "use '--force'"},
      {"run --action Probe -o a.pdf --force a.pdf", "is the input"},
      {"run --action Probe -o . a.pdf", "is a folder"},
      {"run --action Probe --in-place --force a.pdf", "needs '--output'"},
      {"run --action Probe --in-place --report r.csv a.pdf", "report --csv"},
      {"run --action Probe --output-dir a.pdf/o --dry-run a.pdf", "output folder"},
      {"run --action Probe --in-place --dry-run --report r.jsonl --resume ./r.jsonl a.pdf", "dry run"},
  };
  for (const auto& [line, message] : rows) {
    QStringList words = Words(line);
    if (words.contains("Probe")) words += {"--tools-dir", QFileInfo(PROBEACTION_FILE).path()};
    const ProgramResult result = RunProgram(words);
    EXPECT_TRUE(result.out.isEmpty()) << line;
    EXPECT_EQ(result.code, 2) << line << result.err.toStdString();
    EXPECT_THAT(result.err.toStdString(), HasSubstr(message)) << line;
    EXPECT_EQ(result.err.count('\n'), 1) << result.err.toStdString();
  }
  for (const char* name : {"a.pdf", "b.pdf", "-dash.pdf"}) EXPECT_EQ(ReadFile(name), MakePdf(kOld)) << name;
  EXPECT_EQ(QDir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            QStringList({"-dash.pdf", "a.pdf", "b.pdf", "d", "large.txt", "not.tsf", "r.jsonl", "utf-16.txt"}));
}

TEST(Commands, AnActionIsACommand) {
  WriteFile("tool.json", R"({"ActionName": "Set Base URL", "baseUrlString": "http://json/"})");
  QSettings("tool.tsf", QSettings::IniFormat)
      .setValue("ToolSettings", QVariantMap{{"ActionName", "Set Base URL"}, {"baseUrlString", "http://tsf/"}});
  WriteFile("names", "a.pdf\r\nb.pdf\r\n");
  const struct {
    const char* line;
    const char* output;
    const char* url;
    const char* message;
  } rows[] = {
      {"set-base-url http://x/a/ a.pdf b.pdf --in-place", "b.pdf", "http://x/a/", ""},
      {"set-base-url http://x/a a.pdf -o out.pdf", "out.pdf", "http://x/a", "does not end in \"/\""},
      {"set-base-url http://x/ a.pdf -d dir", "dir/a.pdf", "http://x/", ""},
      {"set-base-url --clear baseUrlString a.pdf -d dir", "dir/a.pdf", "", ""},
      {"set-base-url x --unchecked a.pdf -d dir", "dir/a.pdf", "x", ""},
      {"set-base-url http://x/ --files-from names -d dir", "dir/b.pdf", "http://x/", ""},
      {"set-base-url http://x/ --in-place -- -dash.pdf", "./-dash.pdf", "http://x/", ""},
      {"set-base-url --set-each baseUrlString=http://x/{stem}/ a.pdf -d dir", "dir/a.pdf", "http://x/a/", ""},
      {"run --settings tool.tsf -d dir a.pdf", "dir/a.pdf", "http://tsf/", ""},
      {"run --settings tool.json -d dir a.pdf", "dir/a.pdf", "http://json/", ""},
      {"run --settings - -d dir a.pdf", "dir/a.pdf", "http://json/", ""},
      {"run --settings tool.json --set baseUrlString=http://set/ -d dir a.pdf", "dir/a.pdf", "http://set/", ""},
  };
  for (const auto& row : rows) {
    for (const char* name : {"a.pdf", "b.pdf", "-dash.pdf"}) WriteFile(name, MakePdf(kOld));
    const ProgramResult result = RunProgram(Words(row.line), ReadFile("tool.json"));
    EXPECT_EQ(result.code, 0) << row.line << result.err.toStdString();
    EXPECT_EQ(BaseUrlOf(row.output), row.url) << row.line;
    EXPECT_THAT(result.err.toStdString(), HasSubstr(row.message)) << row.line;
  }
  const std::string help = RunProgram({"set-base-url", "--help"}).out.toStdString();
  EXPECT_THAT(
      help, testing::AllOf(HasSubstr("[options] URL FILE..."), HasSubstr("baseUrlString=URL"), HasSubstr("Examples:")));
  EXPECT_THAT(
      RunProgram({"help", "Set Base URL"}).out.toStdString(),
      testing::AllOf(HasSubstr("What a base URL is"), HasSubstr("baseUrlString=URL"), testing::Not(HasSubstr("<p"))));
}

TEST(Commands, EachFileOfASiteGetsTheAddressOfItsFolder) {
  const QByteArray pdf = MakePdf(kOld);
  QStringList files;
  for (int i = 0; i < 200; ++i) {
    const QString folder = i % 40 == 0 ? "site/" : QString("site/part %1/\xC3\xA4/").arg(i % 40);
    QDir().mkpath(folder);
    files += folder + QString::number(i) + ".pdf";
    WriteFile(files.last(), pdf);
  }
  const ProgramResult result = RunProgram({"set-base-url", "--set-each", "baseUrlString=https://example.org/{folder}/",
                                           "--recursive", "site", "--in-place"});
  EXPECT_EQ(result.code, 0) << result.err.toStdString();
  QMap<QByteArray, QByteArray> urls;
  for (const QByteArray& line : RunProgram({"show", "--recursive", "site"}).out.trimmed().split('\n')) {
    urls.insert(line.split('\t').first(), line.split('\t').last());
  }
  EXPECT_EQ(urls.size(), files.size());
  for (int i = 0; i < files.size(); ++i) {
    const QByteArray folder = i % 40 == 0 ? "" : "part%20" + QByteArray::number(i % 40) + "/%C3%A4/";
    EXPECT_EQ(urls[files[i].toUtf8()], "https://example.org/" + folder) << files[i].toStdString();
  }
  EXPECT_EQ(BaseUrlOf(files[1]), "https://example.org/part%201/%C3%A4/");
}

TEST(Commands, ListsAreMadeWithoutADisplay) {
  const QStringList add{"lists", "add", "My List", "--action", "Set Base URL", "--set"};
  EXPECT_EQ(RunProgram({"lists"}).code, 0);
  EXPECT_FALSE(QDir(qEnvironmentVariable("XDG_DATA_HOME") + "/nolva software").exists());
  const QString path = QString::fromUtf8(RunProgram(add + QStringList{"baseUrlString=http://1/"}).out).trimmed();
  EXPECT_TRUE(QFileInfo::exists(path)) << path.toStdString();
  EXPECT_EQ(RunProgram(add + QStringList{"baseUrlString=http://2/"}).code, 0);
  EXPECT_EQ(RunProgram(add + QStringList{"baseUrlString=http://3/", "--category", "C"}).code, 2);
  EXPECT_EQ(RunProgram({"lists"}).out, "My List\tDefault\tSet Base URL, Set Base URL\n");
  EXPECT_EQ(RunProgram({"lists", "remove", "My List", "2"}).code, 2);
  EXPECT_EQ(RunProgram({"lists", "remove", "My List", "0"}).code, 0);
  EXPECT_EQ(RunProgram({"lists", "remove", "My List", "0"}).code, 2);
  WriteFile("a.pdf", MakePdf());
  EXPECT_EQ(RunProgram({"run", "--list", "My List", "--in-place", "a.pdf"}).code, 0);
  EXPECT_EQ(BaseUrlOf("a.pdf"), "http://2/");
  EXPECT_EQ(RunProgram(add + QStringList{"baseUrlString=http://3/", "--category", "C", "--force"}).code, 0);
  EXPECT_EQ(RunProgram({"lists"}).out, "My List\tC\tSet Base URL\n");
  EXPECT_EQ(RunProgram({"lists", "remove", "My List"}).code, 0);
  EXPECT_EQ(RunProgram({"lists"}).out, "");
}

TEST(Commands, PasswordsAreTriedInTurn) {
  WriteFile("plain.pdf", MakePdf());
  for (const char* password : {"", "one", "two"}) {
    const QStringList encrypt{"--encrypt", password, "owner", "256", "--", "plain.pdf", QString(password) + ".pdf"};
    ASSERT_EQ(QProcess::execute("qpdf", encrypt), 0);
  }
  // The passwords of some files do not lock out those that open without one.
  const QStringList files{"plain.pdf", ".pdf", "one.pdf", "two.pdf"};
  const QStringList set{"set-base-url", "http://new/", "--in-place", "--password", "one", "--password", "two"};
  EXPECT_EQ(RunProgram(set + files).code, 0);
  const ProgramResult shown = RunProgram(QStringList{"show", "--password-file", "-"} + files, "one\r\ntwo\n");
  EXPECT_EQ(shown.out.count("http://new/"), 4) << shown.err.toStdString();
  const ProgramResult wrong = RunProgram(QStringList{"show", "--password", "one"} + files);
  EXPECT_EQ(wrong.code, 1);
  EXPECT_EQ(wrong.err, "two.pdf: wrong password\n");
}

TEST(Commands, PlugInsOfTheCurrentFolderAreNotLoaded) {
  QDir().mkdir("Tools");
  QFile::copy(PROBEACTION_FILE, "Tools/ProbeAction.so");
  EXPECT_EQ(RunProgram({"actions"}).out.count('\n'), 2);
  const QByteArray tools = QDir("Tools").absolutePath().toUtf8();
  QDir().mkdir("Twin");
  QFile::copy(PROBEACTION_FILE, "Twin/ProbeAction.so");
  qputenv("VORLANE_TOOLS_PATH", "/nowhere:" + tools + ":" + tools + "/.:" + QDir("Twin").absolutePath().toUtf8());
  const ProgramResult added = RunProgram({"actions"});
  EXPECT_EQ(added.out.count('\n'), 3);
  EXPECT_THAT(added.err.toStdString(),
              testing::AllOf(HasSubstr("names '/nowhere', which is not a folder"),
                             HasSubstr("Two plug-ins have the action 'Probe': " + tools.toStdString())));
  // The file with the action's name is used, so that no other file need be loaded.
  for (const char* name : {"Twin/Another.so", "Twin/Probe.so"}) QFile::copy(PROBEACTION_FILE, name);
  EXPECT_THAT(RunProgram({"actions", "--tools-dir", "Twin"}).err.toStdString(),
              HasSubstr("Probe.so is used, not " + QDir("Twin").absoluteFilePath("Another.so").toStdString()));
  qputenv("VORLANE_TOOLS_PATH", "Tools");
  EXPECT_EQ(RunProgram({"actions"}).code, 2);
  qunsetenv("VORLANE_TOOLS_PATH");
}

TEST(Commands, EditLeadsSomewhere) {
  WriteFile("a.pdf", MakePdf(kOld));
  const QStringList edit{"edit",     "--tools-dir", QFileInfo(PROBEACTION_FILE).path(), "--action", "Probe", "--set",
                         "accept=1", "--set",       "baseUrlString=http://it's/"};
  EXPECT_THAT(RunProgram(edit + QStringList{"--print-command"}).out.toStdString(),
              HasSubstr("vorlane-run run --action Probe --set accept=1 --set 'baseUrlString=http://it'\\''s/'"));
  EXPECT_EQ(ReadFile("a.pdf"), MakePdf(kOld));
  const ProgramResult applied = RunProgram(edit + QStringList{"--document", "a.pdf", "--apply"});
  EXPECT_EQ(applied.code, 0) << applied.err.toStdString();
  EXPECT_EQ(BaseUrlOf("a.pdf"), "http://it's/");
}

}  // namespace
