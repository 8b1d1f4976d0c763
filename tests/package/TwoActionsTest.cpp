// SPDX-License-Identifier: Apache-2.0
// TwoActionsTest KIT STATICS: the kit's own action and the example, as installed in KIT, in this one process, which has
// the kit a third time; and the two probes that were built in STATICS.
#include <gtest/gtest.h>

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QToolButton>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/MeetDialog.h"
#include "tests/support/Sandbox.h"
#include "utils/ActionListFile.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

const QString kUrl = QStringLiteral("https://example.org/tide/");
const QString kTitle = QString::fromUtf8("Ebb & Fl\u00f6w");

QString argument(int index) {
  return QCoreApplication::arguments().at(index);
}

QString tool(const QString& name) {
  return argument(1) + "/lib/vorlane/Tools/" + name + ".so";
}

// A loaded action with the dialog it shows; actions stay loaded. Their symbols are open to each other, the worst that a
// host can do to them.
struct Action {
  Action(const QString& pluginFile, const QString& dialog) : file(pluginFile), dialogName(dialog) {
    QPluginLoader loader(file);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::ExportExternalSymbolsHint);
    interface = qobject_cast<CActionInterface*>(loader.instance());
    EXPECT_NE(interface, nullptr) << loader.errorString().toStdString();
  }

  int Show(Map settings, const std::function<void(QDialog&)>& meet) {
    DialogLoadStruct info{};
    info.settings = &settings;
    MeetDialog(dialogName, meet);
    return interface->ShowDialogProc(nullptr, &info);
  }

  QString file;
  QString dialogName;
  CActionInterface* interface = nullptr;
};

class TwoActions : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(baseUrl_.interface && title_.interface);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QDir().mkpath(CUtils::GetSequenceFolder());
  }

  Action baseUrl_{tool("SetBaseURL"), "SetBaseURLPrefsDialog"};
  Action title_{tool("SetTitle"), "SetTitleDialog"};
};

TEST_F(TwoActions, DoNotSeeEachOthersStaticData) {
  Action first(argument(2) + "/First.so", {});
  EXPECT_EQ(first.interface->GetDisplayName(),
            "PDF Tools 7 fillinfodictentry");  // found before any call of the plug-in
  Action second(argument(2) + "/Second.so", {});
  QWidget firstParent;
  auto* const firstLabel = new QLabel(&firstParent);
  QWidget secondParent;
  auto* const secondLabel = new QLabel(&secondParent);
  const auto call = [](Action& action, QWidget* parent, const QString& section) {
    Map settings{{"section", section}};
    DialogLoadStruct info{};
    info.settings = &settings;
    action.interface->ShowDialogProc(parent, &info);
  };
  call(first, &firstParent, "1");
  call(second, &secondParent, "3");
  EXPECT_EQ(firstLabel->text(), "1");
  call(first, nullptr, "4");
  EXPECT_EQ(firstLabel->text(), "4");
  EXPECT_EQ(secondLabel->text(), "3");
}

// Both actions as a user puts them into one list: the first makes it, the second is added to it.
void makeList(Action& baseUrl, Action& title) {
  const auto add = [](QDialog& dialog, const char* field, const QString& value, const char* choice) {
    Child<QLineEdit>(dialog, field).setText(value);
    MeetDialog("saveAsActionlistDialog", [choice](QDialog& save) {
      Child<QAbstractButton>(save, choice).click();
      Child<QLineEdit>(save, "actionListNameLineEdit").setText("Both");
      Child<QAbstractButton>(save, "saveButton").click();
    });
    Child<QToolButton>(dialog, "VDtoolbarAddToActionListButton").click();
  };
  EXPECT_EQ(baseUrl.Show({}, [&](QDialog& d) { add(d, "lineEdit", kUrl, "newActionListRadioButton"); }), 0);
  EXPECT_EQ(title.Show({}, [&](QDialog& d) { add(d, "titleEdit", kTitle, "addToActionListRadioButton"); }), 0);
}

TEST_F(TwoActions, AddToOneList) {
  makeList(baseUrl_, title_);
  const ActionListFile list = ActionListFile::Read(ActionListFile::PathOf("Both"));
  ASSERT_EQ(list.entries.size(), 2U);
  EXPECT_EQ(list.entries[0].actionName, "Set Base URL");
  EXPECT_EQ(list.entries[0].settings.value("baseUrlString"), kUrl);
  EXPECT_EQ(list.entries[1].actionName, "Set Document Title");
  EXPECT_EQ(list.entries[1].settings.value("titleString"), kTitle);
}

}  // namespace
