// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QSettings>

#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

Map Prefs(const QString& name, bool overwrite, const QString& category = "Work") {
  return {{"baseUrlString", "http://example.org/"},
          {"ActionName", "Set Base URL"},
          {"ActionListName", name},
          {"ActionListCategory", category},
          {"ActionListOverwrite", overwrite}};
}

QString ListPath(const QString& name) {
  return CUtils::GetSequenceFolder() + "/" + name + ".xqq";
}

class ActionLists : public testing::Test {
 protected:
  void SetUp() override { QDir().mkpath(CUtils::GetSequenceFolder()); }
  static QStringList Files() { return Tree(CUtils::GetSequenceFolder()); }
};

// A list of two actions is, byte for byte, the file that hosts read.
TEST_F(ActionLists, TheFormatDoesNotDrift) {
  Map first = Prefs("My List", true);
  first["baseUrlString"] = QString::fromUtf8("http://ex\xc3\xa4mple.org/a b/;\"q\"");
  const QVariant url = first["baseUrlString"];
  CActionUtils::SaveAsCustomActionList(&first);
  EXPECT_EQ(first, Map({{"baseUrlString", url}}));
  Map second = Prefs("My List", false);
  CActionUtils::SaveAsCustomActionList(&second);

  EXPECT_EQ(Files(), QStringList("My_List.xqq"));
  EXPECT_EQ(ReadText(ListPath("My_List")), ReadText(QStringLiteral(UTILS_TEST_DATA "/two-actions.xqq")));
  EXPECT_EQ(IniValue(ListPath("My_List"), "SequenceName"), "My List");
  EXPECT_EQ(IniValue(ListPath("My_List"), "ActionPrefs0").toMap(), first);
  EXPECT_EQ(IniValue(ListPath("My_List"), "ActionPrefs1").toMap(), second);
}

TEST_F(ActionLists, MissingKeysReadAsEmpty) {
  Map prefs;
  CActionUtils::SaveAsCustomActionList(&prefs);
  EXPECT_EQ(Files(), QStringList("Action.xqq"));
  EXPECT_EQ(IniValue(ListPath("Action"), "SequenceName"), "");
  EXPECT_EQ(IniValue(ListPath("Action"), "SequenceCategory"), "Favorites");
  EXPECT_EQ(IniValue(ListPath("Action"), "ActionName0"), "");
  EXPECT_TRUE(IniValue(ListPath("Action"), "ActionPrefs0").toMap().isEmpty());
  CActionUtils::SaveAsCustomActionList(nullptr);
}

TEST_F(ActionLists, AppendingTakesTheLowestFreeNumberAndTheWholeMap) {
  Map prefs = Prefs("L", false);
  CActionUtils::SaveAsCustomActionList(&prefs);  // no such list yet: made as action 0
  EXPECT_FALSE(prefs.contains("ActionName"));
  for (int number : {1, 2}) {
    Map more = Prefs("L", false, "Elsewhere");
    const Map before = more;
    CActionUtils::SaveAsCustomActionList(&more);
    EXPECT_EQ(more, before);
    EXPECT_EQ(IniValue(ListPath("L"), QString("ActionPrefs%1").arg(number)).toMap(), before);
  }
  EXPECT_EQ(IniValue(ListPath("L"), "SequenceCategory"), "Work");

  QSettings(ListPath("L"), QSettings::IniFormat).remove("ActionName1");
  Map filling = Prefs("L", false);
  filling["ActionName"] = "fills the gap";
  CActionUtils::SaveAsCustomActionList(&filling);
  EXPECT_EQ(IniValue(ListPath("L"), "ActionName1"), "fills the gap");
  EXPECT_FALSE(IniValue(ListPath("L"), "ActionName3").isValid());
}

TEST_F(ActionLists, OverwritingLeavesNothingOfTheOldListEvenWithinOneMillisecond) {
  for (int i = 0; i < 50; ++i) {
    Map prefs = Prefs("L", true, QString("c%1").arg(i, 3));
    CActionUtils::SaveAsCustomActionList(&prefs);
    EXPECT_EQ(IniValue(ListPath("L"), "SequenceCategory"), QString("c%1").arg(i, 3));
    Map appended = Prefs("L", false);
    CActionUtils::SaveAsCustomActionList(&appended);
  }
  Map prefs = Prefs("L", true);
  CActionUtils::SaveAsCustomActionList(&prefs);
  EXPECT_FALSE(IniValue(ListPath("L"), "ActionName1").isValid());
  EXPECT_EQ(Files(), QStringList("L.xqq"));
}

TEST_F(ActionLists, AListThatCannotBeReplacedIsKept) {
  Map prefs = Prefs("L", true);
  CActionUtils::SaveAsCustomActionList(&prefs);
  const std::string before = ReadText(ListPath("L"));
  for (bool overwrite : {true, false}) {
    Map again = Prefs("L", overwrite, "Other");
    const Map asGiven = again;
    {
      const FullDisk full;
      CActionUtils::SaveAsCustomActionList(&again);
    }
    EXPECT_EQ(again, asGiven);
    EXPECT_EQ(ReadText(ListPath("L")), before);
    EXPECT_EQ(Files(), QStringList("L.xqq"));
  }

  // What could not be appended then is not appended later on.
  Map appended = Prefs("L", false);
  CActionUtils::SaveAsCustomActionList(&appended);
  EXPECT_EQ(IniValue(ListPath("L"), "ActionPrefs1").toMap(), appended);
  EXPECT_FALSE(IniValue(ListPath("L"), "ActionName2").isValid());

  // A folder of the list's name can neither be deleted nor appended to.
  QDir().mkpath(ListPath("D") + "/inside");
  for (bool overwrite : {true, false}) {
    Map blocked = Prefs("D", overwrite);
    const Map asGiven = blocked;
    CActionUtils::SaveAsCustomActionList(&blocked);
    EXPECT_EQ(blocked, asGiven);
  }
  EXPECT_EQ(Files(), QStringList({"D.xqq", "D.xqq/inside", "L.xqq"}));
}

// No content of the file prevents it, nor what this process read of it before.
TEST_F(ActionLists, AreSavedWithoutAUsableTemporaryFolder) {
  const QByteArray usual = qgetenv("TMPDIR");
  qputenv("TMPDIR", "/proc");  // where not even root can make a file
  const bool appended = ActionListFile::Append(ActionListFile::PathOf("L"), {"A", {{"key", "value"}}}) &&
                        ActionListFile::Append(ActionListFile::PathOf("L"), {"B", {}});
  const ActionListFile list = ActionListFile::Read(ActionListFile::PathOf("L"));
  qputenv("TMPDIR", usual);
  EXPECT_TRUE(appended);
  ASSERT_EQ(list.entries.size(), 2U);
  EXPECT_EQ(list.entries[0].settings.value("key"), "value");
  EXPECT_EQ(Tree(CUtils::GetSequenceFolder()), QStringList("L.xqq"));
}

TEST_F(ActionLists, AppendingHasNoConditions) {
  for (const bool readBefore : {false, true}) {
    WriteFile(ListPath("L"), "\xef\xbb\xbf[General]\n; comment\nSequenceName=L\nwhatever this line is\n");
    if (readBefore) CActionUtils::GetActionListCategories();
    Map prefs = Prefs("L", false);
    CActionUtils::SaveAsCustomActionList(&prefs);
    const ActionListFile list = ActionListFile::Read(ListPath("L"));
    EXPECT_EQ(list.name, "L");
    ASSERT_EQ(list.entries.size(), 1U);
    EXPECT_EQ(list.entries[0].settings, prefs);
  }
  // The same size and time as the list before: only its content differs.
  const QDateTime time = QDateTime::currentDateTime();
  for (const QByteArray name : {"ActionName0", "ActionName1"}) {
    WriteFile(ListPath("L"), "[General]\n" + name + "=Other\n");
    SetTime(ListPath("L"), time);
    Map prefs = Prefs("L", false);
    CActionUtils::SaveAsCustomActionList(&prefs);
    EXPECT_EQ(ActionListFile::Read(ListPath("L")).entries.size(), 2U) << name.constData();
  }
}

TEST_F(ActionLists, AreReadUpToTheFirstGapAsQSettingsReadsThem) {
  struct Row {
    QByteArray text;
    std::size_t entries;
    bool gap, unreadable, damaged;
  };
  const QByteArray empty = R"(@Variant(\0\0\0\b\0\0\0\0))";
  const Row table[] = {
      {"", 0, false, false, false},
      {"\x7f"
       "ELF\n\n[[[",
       0, false, true, false},
      {"ActionName0=a\nActionName2=c\n", 1, true, false, false},
      {"ActionName1=b\n", 0, true, false, false},
      {"\xef\xbb\xbf[General]\n; x\nActionName0=a\n", 1, false, false, false},
      {"# x\nActionName0=a\n", 1, false, true, false},
      {"ActionName0=a\nActionNameX=b\n", 1, false, false, false},
      {"ActionName0=a\nActionPrefs0 = " + empty + "\n", 1, false, false, false},
      {"\xef\xbb\xbf"
       "ActionPrefs0=" +
           empty + "\r\nActionName0=a\r\n",
       1, false, false, false},
      {"ActionName0=a\nActionPrefs0=text\n", 1, false, false, true},
      {"ActionName0=a\nActionPrefs0=@Variant(\\0\\0\\0\\b\\0\\0\\0\\x1\\0)\n; ActionPrefs0=" + empty, 1, false, false,
       true},
  };
  for (const Row& row : table) {
    WriteFile(ListPath("L"), row.text);
    const ActionListFile list = ActionListFile::Read(ListPath("L"));
    ASSERT_EQ(list.entries.size(), row.entries) << row.text.constData();
    EXPECT_EQ(list.hasEntriesAfterGap, row.gap) << row.text.constData();
    EXPECT_EQ(list.hasUnreadableLines, row.unreadable) << row.text.constData();
    if (row.entries > 0) {
      EXPECT_EQ(list.entries[0].isDamaged, row.damaged) << row.text.constData();
    }
  }
}

TEST_F(ActionLists, OddNamesAreWrittenAndFound) {
  const QStringList names = {
      "-rf",  "trailing.", "two\nlines", QString::fromUtf8("\xc3\xa9t\xc3\xa9 \xe6\x97\xa5"), QString(240, 'n'),
      "%d%s", "#;=[x]"};
  for (const QString& name : names) {
    Map prefs = Prefs(name, true, "category of " + name);
    CActionUtils::SaveAsCustomActionList(&prefs);
    EXPECT_EQ(IniValue(ListPath(QString(name).replace(' ', '_')), "SequenceName"), name);
    EXPECT_TRUE(CActionUtils::GetActionListCategories().contains("category of " + name));
  }
  Map tooLong = Prefs(QString(300, 'n'), true);
  CActionUtils::SaveAsCustomActionList(&tooLong);
  EXPECT_EQ(Files().size(), names.size());
}

TEST_F(ActionLists, CategoriesStartWithTheTwoFixedOnesAndIgnoreCase) {
  EXPECT_EQ(CActionUtils::GetActionListCategories(), QStringList({"Default", "Favorites"}));
  const QList<QPair<QString, QString>> lists = {{"a", "work"}, {"b", "Work"}, {"c", "DEFAULT"}, {"d", "Home"}};
  for (const auto& [name, category] : lists) {
    Map prefs = Prefs(name, true, category);
    CActionUtils::SaveAsCustomActionList(&prefs);
  }
  WriteFile(ListPath("empty"), "");
  WriteFile(CUtils::GetSequenceFolder() + "/other.txt", "[General]\nSequenceCategory=Not a list\n");
  QDir().mkpath(ListPath("folder"));
  // Opened, a named pipe would block this test until its time limit.
  ASSERT_EQ(mkfifo(QFile::encodeName(CUtils::GetSequenceFolder() + "/pipe").constData(), 0600), 0);
  QFile::link("pipe", ListPath("linked-pipe"));

  const QStringList categories = CActionUtils::GetActionListCategories();
  EXPECT_EQ(categories.mid(0, 2), QStringList({"Default", "Favorites"}));
  EXPECT_EQ(categories.size(), 4);
  EXPECT_TRUE(categories.contains("Home"));
  EXPECT_TRUE(categories.contains("work", Qt::CaseInsensitive));
}

}  // namespace
