// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QToolButton>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/MeetDialog.h"
#include "tests/pdflib/FakeLibrary.h"
#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

constexpr char kDialog[] = "SetBaseURLPrefsDialog";

class ShowDialog : public testing::Test {
 protected:
  void SetUp() override {
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    CUtils::SetupFolders();
    loader_.setFileName(QStringLiteral(SETBASEURL_FILE));
    ASSERT_TRUE(loader_.load()) << loader_.errorString().toStdString();
    action_ = qobject_cast<CActionInterface*>(loader_.instance());
    ASSERT_NE(action_, nullptr);
    info_.settings = &settings_;
  }

  int show(const std::function<void(QDialog&)>& meet) {
    MeetDialog(kDialog, meet);
    return action_->ShowDialogProc(&window_, &info_);
  }
  static void press(QDialog& dialog, const char* button) { Child<QAbstractButton>(dialog, button).click(); }
  static QLineEdit& field(QDialog& dialog) { return Child<QLineEdit>(dialog, "lineEdit"); }

  QPluginLoader loader_;
  CActionInterface* action_ = nullptr;
  Map settings_;
  DialogLoadStruct info_{};
  QWidget window_;
};

TEST_F(ShowDialog, OnlyAcceptingWritesTheMap) {
  struct Case {
    const char* what;
    std::function<void(QDialog&)> end;
    int result;
  };
  const char kAfter[] = " any text, as it stands ";
  const Case cases[] = {
      {"OK", [](QDialog& d) { press(d, "okButton"); }, 1},
      {"Return in the field", [](QDialog& d) { QTest::keyClick(&field(d), Qt::Key_Return); }, 1},
      {"Enter in the field", [](QDialog& d) { QTest::keyClick(&field(d), Qt::Key_Enter); }, 1},
      {"Cancel", [](QDialog& d) { press(d, "cancelButton"); }, 0},
      {"close button", [](QDialog& d) { press(d, "vorlaneHeaderCloseBtn"); }, 0},
      {"Escape", [](QDialog& d) { QTest::keyClick(&field(d), Qt::Key_Escape); }, 0},
      {"window system's close", [](QDialog& d) { d.close(); }, 0},
  };
  for (const Case& c : cases) {
    settings_ = {{"baseUrlString", "before"}, {"other", 7}};
    EXPECT_EQ(show([&](QDialog& dialog) {
                EXPECT_EQ(field(dialog).text(), "before");
                field(dialog).setText(kAfter);
                c.end(dialog);
              }),
              c.result)
        << c.what;
    Map expected{{"baseUrlString", c.result ? kAfter : "before"}, {"other", 7}};
    if (c.result) expected["ActionName"] = "Set Base URL";
    EXPECT_EQ(settings_, expected) << c.what;
  }
}

TEST_F(ShowDialog, AnEmptyMapShowsAnEmptyFieldAndClearEmptiesIt) {
  EXPECT_EQ(show([](QDialog& dialog) {
              EXPECT_EQ(field(dialog).text(), "");
              field(dialog).setText("x");
              press(dialog, "clearButton");
              press(dialog, "okButton");
            }),
            1);
  EXPECT_EQ(settings_, Map({{"baseUrlString", ""}, {"ActionName", "Set Base URL"}}));
}

TEST_F(ShowDialog, StartsFromTheDocumentUnlessToldNotTo) {
  HalvexPDFLibraryCPDylibCPP1311 document(QStringLiteral(FAKELIBRARY_FILE).toStdWString());
  ASSERT_TRUE(document.LibraryLoaded());
  const OpenFakeLibrary library(FAKELIBRARY_FILE);
  info_.document = &document;
  const QString url = QString::fromUtf8("x\xf0\x9f\x98\x80\xc3\xa9");
  for (const QString& answer : {url, QString()}) {  // an empty one replaces what is stored, too
    library->wideResult = answer.toStdWString();
    for (const bool skip : {true, false}) {
      info_.skipDocumentValue = skip;
      settings_ = {{"baseUrlString", "stored"}, {"other", 7}};
      const QString expected = skip ? "stored" : answer;
      EXPECT_EQ(show([&expected](QDialog& dialog) {
                  EXPECT_EQ(field(dialog).text(), expected);
                  dialog.reject();
                }),
                0);
      EXPECT_EQ(settings_, Map({{"baseUrlString", expected}, {"other", 7}}));
    }
  }
}

TEST_F(ShowDialog, HasItsTitleIconTabOrderAndSlotsAndHidesTheListButtonOnRequest) {
  info_.hideAddToActionList = true;
  show([](QDialog& dialog) {
    EXPECT_FALSE(Child<QToolButton>(dialog, "VDtoolbarAddToActionListButton").isVisible());
    EXPECT_TRUE(Child<QToolButton>(dialog, "VDtoolbarAddToCollectionsButton").isVisible());
    EXPECT_TRUE(Child<QToolButton>(dialog, "vorlaneHeaderCloseBtn").isVisible());
    EXPECT_EQ(Child<QLabel>(dialog, "VDtitleLabel").text(), "Set Base URL");
    EXPECT_STREQ(dialog.metaObject()->className(), "CPrefsDialog");
    const QMetaObject& meta = *dialog.metaObject();
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "on_VDShowSaveDialog()");
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodSignature(), "on_VDShowSaveCollectionDialog()");
    EXPECT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const auto drawn = [&dialog](QIcon::Mode mode) { return dialog.windowIcon().pixmap(128, 128, mode).toImage(); };
    EXPECT_FALSE(drawn(QIcon::Normal).isNull());
    EXPECT_NE(drawn(QIcon::Normal), drawn(QIcon::Selected));
    EXPECT_EQ(drawn(QIcon::Active), drawn(QIcon::Selected));
    EXPECT_NE(drawn(QIcon::Normal), drawn(QIcon::Disabled));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QStringList order;
    for (int i = 0; i < 5; ++i) {
      order << QApplication::focusWidget()->objectName();
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, QStringList({"lineEdit", "clearButton", "okButton", "cancelButton", "lineEdit"}));
    dialog.reject();
  });
}

TEST_F(ShowDialog, EveryTextIsTranslatedButTheStoredName) {
  const PseudoLocale pseudo;
  show([](QDialog& dialog) {
    EXPECT_EQ(UntranslatedTexts(dialog), QStringList());
    press(dialog, "okButton");
  });
  EXPECT_EQ(settings_.value("ActionName"), "Set Base URL");
}

TEST_F(ShowDialog, RemembersItsPlaceUnderAPreviewWindowOnly) {
  const QPoint place(77, 55);
  const auto showAt = [&](const char* context, bool expected) {
    window_.setObjectName(context);
    show([&](QDialog& dialog) {
      EXPECT_EQ(dialog.pos() == place, expected) << context;
      dialog.move(place);
      dialog.reject();
    });
  };
  const QString key = "SetBaseURLPrefsDialoggeometry";
  const QString file = CUtils::GetSettingsFolder() + "/VorlaneViewerSettings.vsf";
  showAt("VorlaneClass", false);
  EXPECT_FALSE(QSettings(file, QSettings::IniFormat).contains(key));
  showAt("VorlanePreviewClass", false);
  EXPECT_EQ(QSettings(file, QSettings::IniFormat).value(key).type(), QVariant::ByteArray);
  showAt("VorlanePreviewClass", true);
  showAt("VorlaneClass", false);
  // What could not be written is lost for this process, too.
  window_.setObjectName("VorlanePreviewClass");
  FailToSave(file, [&] {
    show([](QDialog& dialog) {
      dialog.move(1, 2);
      dialog.reject();
    });
  });
  showAt("VorlanePreviewClass", true);
}

// Each toolbar button opens its dialog with the entered values. However that dialog ends, the settings dialog is then
// rejected.
TEST_F(ShowDialog, TheToolbarStoresWhatIsEnteredAndCloses) {
  struct Case {
    const char* button;
    const char* opened;
    const char* nameField;
    bool save;
  };
  const Case cases[] = {
      {"VDtoolbarAddToActionListButton", "saveAsActionlistDialog", "actionListNameLineEdit", false},
      {"VDtoolbarAddToActionListButton", "saveAsActionlistDialog", "actionListNameLineEdit", true},
      {"VDtoolbarAddToCollectionsButton", "saveAsCollectionDialog", "collectionNameLineEdit", true},
  };
  const QString list = CUtils::GetSequenceFolder() + "/My_List.xqq";
  settings_ = {{"baseUrlString", "before"}};
  for (const Case& c : cases) {
    EXPECT_EQ(show([&c](QDialog& dialog) {
                field(dialog).setText("stored");
                const QImage selected = dialog.windowIcon().pixmap(128, 128, QIcon::Selected).toImage();
                MeetDialog(c.opened, [&](QDialog& save) {
                  if (const auto* icon = save.findChild<QToolButton*>("icon_toolButton")) {
                    EXPECT_EQ(icon->icon().pixmap(128, 128).toImage(), selected);
                  }
                  Child<QLineEdit>(save, c.nameField).setText("My List");
                  c.save ? press(save, "saveButton") : save.reject();
                });
                press(dialog, c.button);
                EXPECT_FALSE(dialog.isVisible());
              }),
              0);
    EXPECT_EQ(settings_, Map({{"baseUrlString", "before"}}));
    EXPECT_EQ(QFile::exists(list), c.save);
  }
  EXPECT_EQ(QSettings(list, QSettings::IniFormat).value("ActionPrefs0").toMap(), Map({{"baseUrlString", "stored"}}));
}

TEST_F(ShowDialog, SurvivesItsParentsDestruction) {
  struct Case {
    const char* slot;
    const char* opened;
  };
  for (const Case& c : {Case{nullptr, kDialog}, Case{"on_VDShowSaveDialog", "saveAsActionlistDialog"},
                        Case{"on_VDShowSaveCollectionDialog", "saveAsCollectionDialog"}}) {
    auto* window = new QWidget;
    MeetDialog(kDialog, [&c, window](QDialog& dialog) {
      MeetDialog(c.opened, [window](QDialog&) { delete window; });
      if (c.slot) QMetaObject::invokeMethod(&dialog, c.slot, Qt::QueuedConnection);
    });
    EXPECT_EQ(action_->ShowDialogProc(window, &info_), 0) << c.opened;
  }
}

TEST_F(ShowDialog, WithoutAMapItShowsNothing) {
  info_.settings = nullptr;
  EXPECT_EQ(action_->ShowDialogProc(nullptr, &info_), 0);
  EXPECT_EQ(action_->ShowDialogProc(nullptr, nullptr), 0);
}

}  // namespace
