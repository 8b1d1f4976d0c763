// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <QCryptographicHash>
#include <QFile>
#include <QStandardPaths>

#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

namespace {

class FileSearch : public testing::Test {
 protected:
  const QString mFolder = Sandbox::Folder() + "/work/tree";

  void Make(const QStringList& files) const {
    for (const QString& file : files) WriteFile(mFolder + '/' + file);
  }
  QStringList Search(const QStringList& suffixes, bool recursive) const {
    QStringList files = CActionUtils::SearchFilesInDir(QDir(mFolder), suffixes, recursive);
    for (QString& file : files) {
      EXPECT_TRUE(file.startsWith(mFolder + '/')) << qPrintable(file);
      file.remove(0, mFolder.size() + 1);
    }
    return files;
  }
};

TEST_F(FileSearch, TakesSuffixesInAnyCaseAndSkipsLinksAndHiddenEntries) {
  Make({"a.PDF", "b.pdf", "c.pdf.bak", "d.pdf/inner.Pdf", "e.txt", ".pdf", ".hidden.pdf", "none", "trailing."});
  QFile::link("b.pdf", mFolder + "/link.pdf");
  QFile::link("missing", mFolder + "/dangling.pdf");
  QFile::link(".", mFolder + "/loop");
  ASSERT_EQ(mkfifo(QFile::encodeName(mFolder + "/pipe.pdf").constData(), 0600), 0);
  EXPECT_EQ(Search({"pdf"}, false), QStringList({"a.PDF", "b.pdf"}));
  EXPECT_EQ(Search({"PDF", "Txt"}, true), QStringList({"a.PDF", "b.pdf", "d.pdf/inner.Pdf", "e.txt"}));
  EXPECT_EQ(Search({""}, false), QStringList({"none", "trailing."}));
  EXPECT_EQ(Search({}, true), QStringList());
  EXPECT_EQ(CActionUtils::SearchFilesInDir(QDir(mFolder + "/absent"), {"pdf"}, true), QStringList());
}

TEST_F(FileSearch, ListsAFoldersFilesAtItsPlaceInNameOrder) {
  Make({"a.pdf", "b/z.pdf", "b/B.pdf", "b/c/x.pdf", "c.pdf", "C.pdf", "B/y.pdf"});
  const QStringList inOrder = {"B/y.pdf", "C.pdf", "a.pdf", "b/B.pdf", "b/c/x.pdf", "b/z.pdf", "c.pdf"};
  EXPECT_EQ(Search({"pdf"}, true), inOrder);
  // Whatever order and filter the folder came with; a relative one is made absolute.
  QDir::setCurrent(mFolder);
  QStringList absolute;
  for (const QString& file : inOrder) absolute << mFolder + '/' + file;
  EXPECT_EQ(CActionUtils::SearchFilesInDir(QDir(".", "", QDir::Time, QDir::Hidden), {"pdf"}, true), absolute);
}

TEST_F(FileSearch, FindsOddNamesAndDeepTrees) {
  const QStringList odd = {"-rf.pdf", QString(251, 'n') + ".pdf", "two\nlines.pdf",
                           QString::fromUtf8("\xc3\xa9t\xc3\xa9 \xe6\x97\xa5\xf0\x9f\x98\x80.pdf")};
  Make(odd);
  EXPECT_EQ(Search({"pdf"}, true), odd);
  Make({"back\\slash/x\\y.back"});
  EXPECT_EQ(Search({"back"}, true), QStringList("back/slash/x/y.back"));
  QString deep;
  for (int i = 0; i < 1500; ++i) deep += "d/";
  Make({deep + "leaf.deep"});
  EXPECT_EQ(Search({"deep"}, true), QStringList(deep + "leaf.deep"));
}

TEST(FileNames, PadWithZerosBeforeTheSign) {
  struct Row {
    int number, width;
    const char* text;
  };
  const Row table[] = {{7, 3, "007"}, {1234, 3, "1234"}, {0, 0, "0"}, {-5, 4, "00-5"}, {5, -1, "5"}, {5, INT_MIN, "5"}};
  for (const Row& row : table) {
    EXPECT_EQ(CActionUtils::GetStringWithLeadingZeroesFromNumber(row.number, row.width), row.text);
  }
  EXPECT_EQ(CActionUtils::GetStringWithLeadingZeroesFromString("ab", 4), "00ab");
  EXPECT_EQ(CActionUtils::GetStringWithLeadingZeroesFromString("", 2), "00");
}

TEST(FileNames, CopyNumbersAreFreeAndDoNotPileUp) {
  const QString folder = Sandbox::Folder() + "/work/data.old/";
  const QString longName = folder + QString(251, 'n') + ".pdf";
  for (const QString name : {"x.pdf", "x (1).pdf", "plain", "-r\n.pdf"}) WriteFile(folder + name);
  WriteFile(longName);
  WriteFile("nodot");
  const QList<QPair<QString, QString>> table = {{folder + "free.pdf", folder + "free.pdf"},
                                                {folder + "x.pdf", folder + "x (2).pdf"},
                                                {folder + "x (1).pdf", folder + "x (1) (1).pdf"},
                                                {folder + "-r\n.pdf", folder + "-r\n (1).pdf"},
                                                {folder + "plain", Sandbox::Folder() + "/work/data (1).old/plain"},
                                                {longName, folder + QString(251, 'n') + " (1).pdf"},
                                                {"nodot", "nodot"},
                                                {"", ""}};
  for (const auto& [path, expected] : table) EXPECT_EQ(CActionUtils::AppendCopyNumberToFilename(path), expected);
}

TEST(FileNames, CleaningOnlyRemoves) {
  const QList<QPair<QString, QString>> table = {{"  a:b/c?.pdf\t", "abc.pdf"},
                                                {"\"My Report\"", "My Report"},
                                                {"\" x \"", " x "},
                                                {"a\tb\r\nc", "abc"},
                                                {"<>:\"/\\|?*", ""},
                                                {"-dash.", "-dash."},
                                                {"\u00e9t\u00e9\u00a0", "\u00e9t\u00e9"}};
  for (const auto& [text, expected] : table) {
    QString name = text;
    CActionUtils::FixStringForFilename(&name);
    EXPECT_EQ(name, expected);
  }
  CActionUtils::FixStringForFilename(nullptr);
}

TEST(FileNames, AllUsersPlaceholder) {
  const QList<QPair<QByteArray, QString>> homes = {
      {"/Users/anna", "/Users/All Users/"},
      {"/C/Documents and Settings/anna", "/C/Documents and Settings/All Users/Application Data/"},
      {"/root", "/All Users/"}};
  for (const auto& [home, folder] : homes) {
    qputenv("HOME", home);
    EXPECT_EQ(CActionUtils::ReplaceEnvironmentPaths("%ALLUSERSPROFILE%/x"), folder + "/x");
    EXPECT_EQ(CActionUtils::ReplaceEnvironmentPaths("a%ALLUSERSPROFILE%b%ALLUSERSPROFILE%"),
              "a" + folder + "b" + folder);
    EXPECT_EQ(CActionUtils::ReplaceEnvironmentPaths("%AllUsersProfile%/%1"), "%AllUsersProfile%/%1");
  }
}

TEST(FileNames, RoundTakesHalvesDown) {
  const QList<QPair<double, int>> table = {{0.5, 0},  {1.5, 1},         {1.500001, 2},     {2.5, 2},
                                           {2.51, 3}, {-2.5, -3},       {-2.4, -2},        {-0.5, -1},
                                           {3.0, 3},  {1e300, INT_MAX}, {-1e300, INT_MIN}, {NAN, 0}};
  for (const auto& [value, expected] : table) EXPECT_EQ(CActionUtils::Round(value), expected) << value;
}

class Locations : public testing::Test {
 protected:
  void SetUp() override { QDir().mkpath(CUtils::GetSettingsFolder()); }
};

TEST_F(Locations, AreKeptPerKeyAndStartAtTheDesktop) {
  const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("open"), desktop);
  const QString odd = QString::fromUtf8("/t\xc3\xa9/\xe6\x97\xa5, a;\"b\"\n@x=%20\\");
  CActionUtils::SaveLastVisitedLocation("open", odd);
  CActionUtils::SaveLastVisitedLocation(QString::fromUtf8("odd k\xc3\xa9y=[1]"), "/second");
  CActionUtils::SaveLastVisitedLocation("empty", "");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("open"), odd);
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation(QString::fromUtf8("odd k\xc3\xa9y=[1]")), "/second");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("empty"), "");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("other"), desktop);
  EXPECT_EQ(IniValue(CUtils::GetSettingsFolder() + "/LastVisitedLocations.vsf", "empty"), "");
  EXPECT_EQ(Tree(CUtils::GetSettingsFolder()), QStringList("LastVisitedLocations.vsf"));
}

TEST_F(Locations, LinksAreNewestFirstOnceEachAndFiveAtMost) {
  const QList<QPair<QStringList, QStringList>> table = {{{}, {}},
                                                        {{"a"}, {"a"}},
                                                        {{"a", "b", "c", "d", "e", "f"}, {"f", "e", "d", "c", "b"}},
                                                        {{"a", "b", "c", "a"}, {"a", "c", "b"}},
                                                        {{"A", "a"}, {"a", "A"}},
                                                        {{""}, {""}},
                                                        {{"x, y", "@z"}, {"@z", "x, y"}}};
  for (int row = 0; row < table.size(); ++row) {
    const QString key = QString("key%1").arg(row);
    for (const QString& link : table[row].first) CActionUtils::SaveLastEnteredLink(key, link);
    EXPECT_EQ(CActionUtils::GetLastEnteredLinks(key), table[row].second) << row;
  }
}

// What could not be written is not seen by this process, by another one or by a later save.
TEST_F(Locations, AFailedSaveIsLostForEverybody) {
  const QString store = CUtils::GetSettingsFolder() + "/LastVisitedLocations.vsf";
  CActionUtils::SaveLastEnteredLink("links", "kept");
  CActionUtils::SaveLastVisitedLocation("old", "/kept");
  CActionUtils::SaveLastVisitedLocation("new/below", "/kept too");
  OtherProcess other([] {
    CActionUtils::SaveLastVisitedLocation("old", "/theirs");
    CActionUtils::SaveLastEnteredLink("links", "theirs");
  });
  const std::string before = ReadText(store);
  FailToSave(store, [] {
    CActionUtils::SaveLastEnteredLink("links", "lost");
    CActionUtils::SaveLastVisitedLocation("old", "/lost");
    CActionUtils::SaveLastVisitedLocation("new", "/lost");
  });
  EXPECT_EQ(ReadText(store), before);
  EXPECT_EQ(Tree(CUtils::GetSettingsFolder()), QStringList("LastVisitedLocations.vsf"));
  EXPECT_EQ(CActionUtils::GetLastEnteredLinks("links"), QStringList("kept"));
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("old"), "/kept");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("new/below"), "/kept too");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("new"),
            QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));

  other.Run();
  CActionUtils::SaveLastVisitedLocation("else", "/b");
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("old"), "/theirs");
  EXPECT_EQ(CActionUtils::GetLastEnteredLinks("links"), QStringList({"theirs", "kept"}));
  EXPECT_EQ(CActionUtils::GetLastVisitedLocation("else"), "/b");
}

// The size and the time of the file before do not matter.
TEST_F(Locations, AreReadFromTheFileEachTime) {
  const QString store = CUtils::GetSettingsFolder() + "/LastVisitedLocations.vsf";
  const QDateTime time = QDateTime::currentDateTime();
  for (const QByteArray place : {"/a", "/b"}) {
    WriteFile(store, "[General]\nhere=" + place + "\n");
    SetTime(store, time);
    EXPECT_EQ(CActionUtils::GetLastVisitedLocation("here"), QString(place));
  }
}

TEST(SplitCommands, MapBothWays) {
  ASSERT_EQ(gCommandsList.size(), 43);
  for (int number = 0; number < gCommandsList.size(); ++number) {
    EXPECT_EQ(CActionUtils::SplitComGetCommandIndex(gCommandsList.at(number).toUpper()), number);
    EXPECT_EQ(CActionUtils::SplitComGetCommandString(number), gCommandsList.at(number));
  }
  // Settings hold these words: none may ever change its spelling or its place.
  EXPECT_EQ(QCryptographicHash::hash(gCommandsList.join('\n').toUtf8(), QCryptographicHash::Md5).toHex(),
            "52ecd9bb41e247961620025aecf98d6d");
  const QList<QPair<QString, int>> known = {{"splitiftextispresent", 0},
                                            {"SkipHeader", 7},
                                            {"filterfilename", 21},
                                            {"getfilenamesfromlistinfile", 22},
                                            {"excludeifnotextcontainted", 31},
                                            {"FillInfoDictEntry", 42},
                                            {"excludeifnotextcontained", -1},
                                            {"", -1}};
  for (const auto& [command, number] : known) EXPECT_EQ(CActionUtils::SplitComGetCommandIndex(command), number);
  for (int number : {43, 1000, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(CActionUtils::SplitComGetCommandString(number), "INVALID_INDEX");
  }
}

}  // namespace
