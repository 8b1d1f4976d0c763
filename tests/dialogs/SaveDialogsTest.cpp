// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "dialogs/CSaveAsActionlistDialog.h"
#include "dialogs/CSaveAsCollectionDialog.h"
#include "tests/dialogs/MeetDialog.h"
#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

const Map kSettings{{"baseUrlString", QString::fromUtf8("http://ex\u00e4mple.org/a b/")},
                    {"ActionName", "Set Base URL"}};

class SaveDialogs : public testing::Test {
 protected:
  void SetUp() override {
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QDir().mkpath(CUtils::GetSequenceFolder());
    settings_ = kSettings;
  }

  static QString listFile(const QString& name) { return CUtils::GetSequenceFolder() + "/" + name + ".xqq"; }
  static QVariant listValue(const QString& name, const QString& key) {
    return QSettings(listFile(name), QSettings::IniFormat).value(key);
  }
  // Runs "Add To Action" on a fresh copy of the settings.
  int runActionList(const std::function<void(QDialog&)>& meet) {
    settings_ = kSettings;
    CSaveAsActionlistDialog dialog(nullptr);
    dialog.LoadPrefsData(&settings_);
    QSignalSpy changed(&dialog, SIGNAL(actionListChanged(QString)));
    MeetDialog("saveAsActionlistDialog", meet);
    const int result = dialog.exec();
    changedLists_.clear();
    for (const auto& arguments : changed) changedLists_ << arguments.at(0).toString();
    return result;
  }
  int runFavorites(const std::function<void(QDialog&)>& meet) {
    CSaveAsCollectionDialog dialog(nullptr);
    dialog.LoadPrefsData(&settings_);
    MeetDialog("saveAsCollectionDialog", meet);
    return dialog.exec();
  }

  // Runs "Add To Favorites" and saves the settings to a file; an empty name cancels the file dialog.
  void saveToFile(const QString& file) {
    EXPECT_EQ(runFavorites([&file](QDialog& dialog) {
                MeetDialog("QFileDialog", [&file](QDialog& files) {
                  EXPECT_EQ(files.windowTitle(), "Save Tool settings to file");
                  EXPECT_EQ(static_cast<QFileDialog&>(files).directory(), QDir::home());
                  EXPECT_EQ(static_cast<QFileDialog&>(files).nameFilters(), QStringList("Tool Settings Files (*.tsf)"));
                  if (file.isEmpty()) return files.reject();
                  Child<QLineEdit>(files, "fileNameEdit").setText(file);
                  static_cast<QFileDialog&>(files).setOption(QFileDialog::DontConfirmOverwrite);
                  files.accept();
                });
                Child<QPushButton>(dialog, "saveSettingsToFileButton").click();
              }),
              QDialog::Rejected);
  }

  Map settings_;
  QStringList changedLists_;
};

void typeName(QDialog& dialog, const char* field, const QString& name) {
  Child<QLineEdit>(dialog, field).setText(name);
}

TEST_F(SaveDialogs, CreatesAListAndAppendsToIt) {
  EXPECT_EQ(runActionList([](QDialog& dialog) {
              typeName(dialog, "actionListNameLineEdit", "My  List");
              Child<QComboBox>(dialog, "categoryComboBox").setEditText("Work");
              Child<QPushButton>(dialog, "saveButton").click();
            }),
            QDialog::Accepted);
  EXPECT_EQ(settings_, Map({{"baseUrlString", kSettings["baseUrlString"]}}));
  EXPECT_EQ(changedLists_, QStringList());
  EXPECT_EQ(listValue("My__List", "SequenceName"), "My  List");
  EXPECT_EQ(listValue("My__List", "SequenceCategory"), "Work");

  EXPECT_EQ(runActionList([](QDialog& dialog) {
              auto& category = Child<QComboBox>(dialog, "categoryComboBox");
              EXPECT_NE(category.findText("Work"), -1);
              Child<QRadioButton>(dialog, "addToActionListRadioButton").click();
              EXPECT_FALSE(category.isEnabled());
              typeName(dialog, "actionListNameLineEdit", "My  List");
              Child<QPushButton>(dialog, "saveButton").click();
            }),
            QDialog::Accepted);
  EXPECT_EQ(changedLists_, QStringList("My  List"));
  EXPECT_EQ(listValue("My__List", "ActionName1"), "Set Base URL");
  EXPECT_EQ(listValue("My__List", "ActionPrefs1").toMap(), settings_);
}

// Return saves from wherever the focus is, and once: a second save would append twice, or store an action without name.
TEST_F(SaveDialogs, ReturnSavesOnce) {
  for (const char* radio : {"newActionListRadioButton", "addToActionListRadioButton"}) {
    for (const char* focus : {"actionListNameLineEdit", "newActionListRadioButton", "saveButton"}) {
      QFile::remove(listFile("L"));
      EXPECT_EQ(runActionList([&](QDialog& dialog) {
                  Child<QRadioButton>(dialog, radio).click();
                  typeName(dialog, "actionListNameLineEdit", "L");
                  QTest::keyClick(&Child<QWidget>(dialog, focus), Qt::Key_Return);
                }),
                QDialog::Accepted);
      EXPECT_EQ(listValue("L", "ActionName0"), "Set Base URL") << radio << " " << focus;
      EXPECT_FALSE(listValue("L", "ActionName1").isValid()) << radio << " " << focus;
    }
  }
}

TEST_F(SaveDialogs, BlankNamesAndCancelSaveNothing) {
  for (const QString& name : {QString(), QStringLiteral("   "), QStringLiteral("\t \u00a0")}) {
    EXPECT_EQ(runActionList([&name](QDialog& dialog) {
                typeName(dialog, "actionListNameLineEdit", "x");
                EXPECT_TRUE(Child<QPushButton>(dialog, "saveButton").isEnabled());
                typeName(dialog, "actionListNameLineEdit", name);
                EXPECT_FALSE(Child<QPushButton>(dialog, "saveButton").isEnabled());
                QTest::keyClick(&Child<QWidget>(dialog, "actionListNameLineEdit"), Qt::Key_Return);
                QMetaObject::invokeMethod(&dialog, "on_Save");
                EXPECT_TRUE(dialog.isVisible());
                typeName(dialog, "actionListNameLineEdit", "L");
                QTest::keyClick(&Child<QWidget>(dialog, "cancelButton"),
                                name.isEmpty() ? Qt::Key_Return : Qt::Key_Escape);
              }),
              QDialog::Rejected);
    EXPECT_EQ(settings_, kSettings);
  }
  EXPECT_TRUE(QDir(CUtils::GetSequenceFolder()).isEmpty());
}

TEST_F(SaveDialogs, WithoutAMapNothingHappens) {
  CSaveAsActionlistDialog list(nullptr);
  typeName(list, "actionListNameLineEdit", "L");
  list.on_Save();
  CSaveAsCollectionDialog favorites(nullptr);
  typeName(favorites, "collectionNameLineEdit", "L");
  favorites.on_Save();
  EXPECT_EQ(list.result() + favorites.result(), 0);
  EXPECT_TRUE(QDir(CUtils::GetSequenceFolder()).isEmpty());
}

TEST_F(SaveDialogs, NamesAFavorite) {
  EXPECT_EQ(runFavorites([this](QDialog& dialog) {
              QMetaObject::invokeMethod(&dialog, "on_Save");  // disabled: nothing
              EXPECT_EQ(settings_, kSettings);
              typeName(dialog, "collectionNameLineEdit", " a b ");
              QTest::keyClick(&Child<QWidget>(dialog, "collectionNameLineEdit"), Qt::Key_Return);
            }),
            QDialog::Accepted);
  Map expected = kSettings;
  expected["CollectionName"] = " a b ";
  EXPECT_EQ(settings_, expected);
}

TEST_F(SaveDialogs, WritesAToolSettingsFileOfTheKnownFormat) {
  saveToFile(QString());
  for (const QDir& folder : {QDir(), QDir::home()}) EXPECT_EQ(Tree(folder.path()), QStringList());
  const QString file = QDir::homePath() + "/settings.tsf";
  saveToFile(file);
  EXPECT_EQ(settings_, kSettings);
  EXPECT_EQ(IniValue(file, "ToolSettings").toMap(), kSettings);
  const std::string written = ReadText(file);
  EXPECT_EQ(written, ReadText(DIALOGS_TEST_DATA "/set-base-url.tsf"));

  // What could not be written is not written later, with something else, either.
  settings_["baseUrlString"] = "lost";
  FailToSave(file, [&] { saveToFile(file); });
  EXPECT_EQ(IniValue(file, "ToolSettings").toMap(), kSettings);
  QSettings(file, QSettings::IniFormat).sync();
  EXPECT_EQ(ReadText(file), written);
}

TEST_F(SaveDialogs, AnImageOfAnySizeBecomesTheIcon) {
  const QString picture = QDir::homePath() + "/picture.png";
  QImage image(300, 20, QImage::Format_RGB32);
  image.fill(Qt::green);
  ASSERT_TRUE(image.save(picture));
  runFavorites([&picture](QDialog& dialog) {
    auto& button = Child<QToolButton>(dialog, "icon_toolButton");
    const auto choose = [&button](const QString& file) {
      MeetDialog("QFileDialog", [file](QDialog& files) {
        if (file.isEmpty()) return files.reject();
        Child<QLineEdit>(files, "fileNameEdit").setText(file);
        files.accept();
      });
      button.click();
    };
    const qint64 before = button.icon().cacheKey();
    choose(QString());
    EXPECT_EQ(button.icon().cacheKey(), before);
    choose(picture);
    const QPixmap icon = button.icon().pixmap(128, 128);
    EXPECT_EQ(icon.size(), QSize(128, 128));
    EXPECT_EQ(icon.toImage().pixelColor(64, 64), QColor(Qt::green));
    dialog.reject();
  });
}

TEST_F(SaveDialogs, EveryTextIsTranslated) {
  const PseudoLocale pseudo;
  EXPECT_EQ(UntranslatedTexts(CSaveAsActionlistDialog(nullptr)), QStringList());
  EXPECT_EQ(UntranslatedTexts(CSaveAsCollectionDialog(nullptr)), QStringList());
}

}  // namespace
