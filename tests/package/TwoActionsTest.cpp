// SPDX-License-Identifier: Apache-2.0
// TwoActionsTest KIT STATICS: the kit's own action and the example, as installed in KIT, in this one process, which has
// the kit a third time; and the two probes that were built in STATICS.
#include <gtest/gtest.h>

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QProcess>
#include <QRegularExpression>
#include <QToolButton>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/MeetDialog.h"
#include "tests/support/Sandbox.h"
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

QString output(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.start(program, arguments);
  EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
  EXPECT_EQ(process.exitCode(), 0) << program.toStdString();
  return QString::fromUtf8(process.readAllStandardOutput());
}

// What programs that are not of this project read in the file.
void expectBoth(const QString& file) {
  SCOPED_TRACE(file.toStdString());
  EXPECT_TRUE(output("pdfinfo", {file})
                  .contains(QRegularExpression("^Title: +" + kTitle + "$", QRegularExpression::MultilineOption)));
  EXPECT_EQ(output("mutool", {"show", file, "trailer/Root/URI/Base"}).trimmed(), "(" + kUrl + ")");
  output("qpdf", {"--check", file});
}

TEST_F(TwoActions, RunFromOneListOverRealFiles) {
  makeList(baseUrl_, title_);
  QStringList samples;
  for (const char* name : {"groff", "cairo", "ghostscript", "tex-xref-stream", "linearized",
                           "encrypted-no-user-password", "signed", "damaged-xref"}) {
    samples << QStringLiteral(SAMPLES "/") + name + ".pdf";
  }
  output(argument(1) + "/bin/vorlane-run",
         QStringList{"run", "--quiet", "--jobs", "0", "--list", "Both", "--output-dir", "out"} + samples);
  for (const QString& sample : samples) expectBoth("out/" + QFileInfo(sample).fileName());
}

}  // namespace
