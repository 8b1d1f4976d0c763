// SPDX-License-Identifier: Apache-2.0
#include "utils/CUtils.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSettings>

#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "utils/CActionUtils.h"
#include "utils/NumberFormat.h"

namespace {

QString Tools() {
  return Sandbox::Folder() + "/data/nolva software/PDF Tools/";
}

TEST(CUtils, AccessorsSpellTheFoldersWithTheirSlashes) {
  EXPECT_EQ(CUtils::GetAppDataFolder(), Sandbox::Folder() + "/data");
  EXPECT_EQ(CUtils::GetAppDataToolsFolder(), Tools());
  EXPECT_EQ(CUtils::GetSequenceFolder(), Tools() + "Actions");
  EXPECT_EQ(CUtils::GetWFFolder(), Tools() + "WF");
  EXPECT_EQ(CUtils::GetReportsFolder(), Tools() + "/Reports/Action Reports");
  EXPECT_EQ(CUtils::GetAppLogFolder(), Tools() + "/Reports/App Log");
  EXPECT_EQ(CUtils::GetSettingsFolder(), Tools() + "/Settings");
  EXPECT_EQ(CUtils::GetCollectionsFolder(), Tools() + "/Settings/Favorites");
  EXPECT_EQ(CUtils::GetAdvSplitTemplatesFolder(), Tools() + "/Settings/AdvSplitTemplates");
  EXPECT_EQ(CUtils::GetActionFolder(), "./Tools");
  EXPECT_EQ(CActionUtils::GetSettingsFolder(), CUtils::GetSettingsFolder());
  EXPECT_EQ(CActionUtils::GetCollectionsFolder(), CUtils::GetCollectionsFolder());
  EXPECT_EQ(CActionUtils::GetSequenceFolder(), CUtils::GetSequenceFolder());
  EXPECT_EQ(CActionUtils::GetVorlaneAppDataFolder(), Tools());
  EXPECT_EQ(Tree(Sandbox::Folder() + "/data"), QStringList());
}

TEST(CUtils, AppNameFallsBackToTheTools) {
  EXPECT_EQ(CUtils::GetAppName(), "PDF Tools");
  CUtils::SetAppName("Vorlane");
  EXPECT_EQ(CUtils::GetAppName(), "Vorlane");
  CUtils::SetAppName("");
  EXPECT_EQ(CUtils::GetAppName(), "PDF Tools");
}

TEST(CUtils, SetupFoldersMakesTheWholeTreeOnceAndKeepsWhatIsThere) {
  QCoreApplication::setApplicationName("Lister");
  CUtils::SetAppName("not used here");
  QDir().mkpath(Sandbox::Folder() + "/home/Documents");
  CUtils::SetupFolders();
  const QStringList data = {"nolva software",
                            "nolva software/PDF Tools",
                            "nolva software/PDF Tools/Actions",
                            "nolva software/PDF Tools/Reports",
                            "nolva software/PDF Tools/Reports/Action Reports",
                            "nolva software/PDF Tools/Reports/App Log",
                            "nolva software/PDF Tools/Scripts",
                            "nolva software/PDF Tools/Settings",
                            "nolva software/PDF Tools/Settings/AdvSplitTemplates",
                            "nolva software/PDF Tools/Settings/Favorites",
                            "nolva software/PDF Tools/WF"};
  EXPECT_EQ(Tree(Sandbox::Folder() + "/data"), data);
  EXPECT_EQ(Tree(Sandbox::Folder() + "/home/Documents"), QStringList({"Lister", "Lister/Input", "Lister/Output"}));

  WriteFile(CUtils::GetSequenceFolder() + "/kept.xqq");
  CUtils::SetupFolders();
  EXPECT_EQ(ReadText(CUtils::GetSequenceFolder() + "/kept.xqq"), "x");
}

TEST(CUtils, SetupFoldersWorksBelowARelativeLocationAndGoesOnAfterAFailedStep) {
  qputenv("XDG_DATA_HOME", "data here");
  WriteFile(CUtils::GetAppDataToolsFolder() + "Reports", "a file where a folder belongs");
  CUtils::SetupFolders();
  EXPECT_TRUE(QDir("data here/nolva software/PDF Tools/Settings/AdvSplitTemplates").exists());
  EXPECT_EQ(ReadText(CUtils::GetAppDataToolsFolder() + "Reports"), "a file where a folder belongs");
}

TEST(CUtils, NewTempFoldersAreNumberedFromZero) {
  const QString temp = Sandbox::Folder() + "/tmp/";
  for (const QString expected : {"w", "w_0", "w_1", "w_2"}) {
    QString name = "w";
    EXPECT_EQ(CUtils::GetNewTempFolder(&name).path(), temp + expected);
    EXPECT_EQ(name, temp + expected);
    EXPECT_TRUE(QDir(name).exists());
  }
  // A file takes a name too; a name below a file cannot be made.
  WriteFile(temp + "f");
  QString name = "f";
  CUtils::GetNewTempFolder(&name);
  EXPECT_EQ(name, temp + "f_0");
  name = "f/below";
  EXPECT_EQ(CUtils::GetNewTempFolder(&name), QDir::temp());
  EXPECT_EQ(name, temp);
  EXPECT_EQ(CUtils::GetNewTempFolder(nullptr), QDir::temp());
  // Percent signs in a taken name are conversions.
  for (const QString expected : {"n%03d", "n000_%d"}) {
    name = "n%03d";
    CUtils::GetNewTempFolder(&name);
    EXPECT_EQ(name, temp + expected);
  }
}

TEST(NumberFormat, TakesOneIntegerAndLeavesTheRest) {
  const QList<QPair<QString, QString>> table = {
      {"plain", "plain"},      {"%d", "42"},    {"%5i|", "   42|"}, {"%-5u|", "42   |"},
      {"%x%d", "2a%d"},        {"%#X", "0x2A"}, {"%.4d", "0042"},   {"%%%d%%", "%42%"},
      {"%9999d", "%9999d"},    {"%", "%"},      {"%c %s", "%c %s"}, {"%s%n%p%f%ld%*d", "%s%n%p%f%ld%*d"},
      {"\u00e9%d", "\u00e942"}};
  for (const auto& [format, expected] : table) {
    EXPECT_EQ(ExpandNumberFormat(format, 42), expected) << qPrintable(format);
  }
}

TEST(CUtils, NewTempFileIsTheFirstFreeNumberAndNotCreated) {
  char base[] = "x";
  const QString temp = Sandbox::Folder() + "/tmp/";
  EXPECT_EQ(CUtils::GetNewTempFile(base), temp + "x_1.pdf");
  EXPECT_EQ(CUtils::GetNewTempFile(base), temp + "x_1.pdf");
  WriteFile(temp + "x_1.pdf");
  WriteFile(temp + "x_3.pdf");
  EXPECT_EQ(CUtils::GetNewTempFile(base), temp + "x_2.pdf");
  char odd[] = "100%s a\\\xc3\xa9";
  EXPECT_EQ(CUtils::GetNewTempFile(odd), temp + QString::fromUtf8("100%s a/\xc3\xa9_1.pdf"));
  EXPECT_EQ(CUtils::GetNewTempFile(nullptr), temp + "_1.pdf");
  for (int n = 1; n <= 9999; ++n) WriteFile(temp + QString("x_%1.pdf").arg(n));
  EXPECT_TRUE(CUtils::GetNewTempFile(base).isEmpty());
  QFile::remove(temp + "x_9999.pdf");
  EXPECT_EQ(CUtils::GetNewTempFile(base), temp + "x_9999.pdf");
}

TEST(CUtils, OpenGLFlagsQualifyWithAGap) {
  const QList<QPair<int, bool>> table = {{-1, false},   {0, false},   {31, false},  {32, true},
                                         {63, true},    {64, true},   {65, false},  {127, false},
                                         {2047, false}, {2048, true}, {4096, true}, {1044607, true}};
  for (const auto& [flags, expected] : table) EXPECT_EQ(CUtils::IsOpenGLSufficient(flags), expected) << flags;
  EXPECT_FALSE(CUtils::CheckOpenGLSupport());  // no window system here at all
}

TEST(CUtils, InstallationIsForTheCurrentUserExactlyForOne) {
  CUtils::GetInstalationType();
  EXPECT_FALSE(CUtils::mInstalationTypeCurrentUser);
  EXPECT_EQ(Tree("."), QStringList());
  const QList<QPair<QByteArray, bool>> table = {{"1", true}, {"2", false}, {"one", false}, {"1", true}, {"", false}};
  QByteArray padding;
  for (const auto& [value, expected] : table) {
    // A file of the size and time of the one before would not be read again.
    padding += "\n\n\n\n";
    WriteFile("HKEY_LOCAL_MACHINE\\Software\\Halvex\\Halvex PDF Tools Pro",
              "[General]\nInstallType=" + value + padding);
    CUtils::GetInstalationType();
    EXPECT_EQ(CUtils::mInstalationTypeCurrentUser, expected) << value.constData();
  }
}

TEST(CUtils, ConvertKeepsTheOrderOfItsOperations) {
  const double value = 0.1 + 0.2;  // a value for which other orders of the same factors differ in the last bit
  const double expected[4][4] = {{value, value * 2.54, value * 2.54 * 10.0, value * 72.0},
                                 {value / 2.54, value, value * 10.0, value * 72.0 / 2.54},
                                 {value / 25.4, value / 10.0, value, value * 72.0 / 25.4},
                                 {value / 72.0, value * 2.54 / 72.0, value * 2.54 * 10.0 / 72.0, value}};
  for (long from = 0; from < 4; ++from) {
    for (long to = 0; to < 4; ++to) EXPECT_EQ(CUtils::Convert(from, value, to), expected[from][to]) << from << to;
  }
  EXPECT_EQ(CUtils::Convert(0, 1.0, 3), 72.0);
  EXPECT_EQ(CUtils::Convert(3, 72.0, 0), 1.0);
  EXPECT_EQ(CUtils::Convert(2, 25.4, 0), 1.0);
  for (long unknown : {-1L, 4L, 9L, 1L << 40}) {
    EXPECT_EQ(CUtils::Convert(unknown, 5.0, 0), 5.0);
    EXPECT_EQ(CUtils::Convert(0, 5.0, unknown), 5.0);
  }
}

}  // namespace
