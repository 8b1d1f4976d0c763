// SPDX-License-Identifier: Apache-2.0
// What the action does to documents is tested in tests/host/, with the program and the engine.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/MeetDialog.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

class MakeLinksAbsolute : public testing::Test {
 protected:
  void SetUp() override {
    CUtils::SetupFolders();
    loader_.setFileName(QStringLiteral(MAKELINKSABSOLUTE_FILE));
    action_ = qobject_cast<CActionInterface*>(loader_.instance());
    ASSERT_NE(action_, nullptr) << loader_.errorString().toStdString();
  }

  QPluginLoader loader_;
  CActionInterface* action_ = nullptr;
};

TEST_F(MakeLinksAbsolute, TheDialogEditsBothSettings) {
  for (const auto button : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel}) {
    const Map before{{"base", "https://e.org/"}, {"removeBase", true}, {"other", 7}};
    Map settings = before;
    DialogLoadStruct info{};
    info.settings = &settings;
    MeetDialog("MakeLinksAbsoluteDialog", [&](QDialog& dialog) {
      EXPECT_EQ(Child<QLineEdit>(dialog, "baseEdit").text(), "https://e.org/");
      EXPECT_TRUE(Child<QCheckBox>(dialog, "removeBox").isChecked());
      Child<QLineEdit>(dialog, "baseEdit").clear();
      Child<QCheckBox>(dialog, "removeBox").click();
      Child<QDialogButtonBox>(dialog, "buttonBox").button(button)->click();
    });
    const bool accepted = button == QDialogButtonBox::Ok;
    EXPECT_EQ(action_->ShowDialogProc(nullptr, &info), accepted ? 1 : 0);
    const Map after{{"base", ""}, {"removeBase", false}, {"other", 7}, {"ActionName", "Make Links Absolute"}};
    EXPECT_EQ(settings, accepted ? after : before);
  }
}

TEST_F(MakeLinksAbsolute, IconsAndHelpPageAreInThePlugIn) {
  for (const QString& name : action_->GetDefaultIcon().split('#')) {
    const QString file = ":/Vorlane/Resources/Tools/" + name;
    EXPECT_EQ(QImage(file).size(), QSize(128, 128)) << name.toStdString();
    EXPECT_EQ(QImage(QString(file).replace(".png", "@2x.png")).size(), QSize(256, 256)) << name.toStdString();
  }
  EXPECT_TRUE(QFile::exists(":/Vorlane/Resources/HelpFiles/" + action_->GetActionHelp()));
}

}  // namespace
