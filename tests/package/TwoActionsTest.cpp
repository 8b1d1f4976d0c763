// SPDX-License-Identifier: Apache-2.0
// TwoActionsTest KIT STATICS: the kit's own action and the example, as installed in KIT, in this one process, which has
// the kit a third time; and the two probes that were built in STATICS.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QToolButton>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryInformationKeys.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "plugin/WorkProcInfoStruct.h"
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

  int Show(Map settings, const std::function<void(QDialog&)>& meet,
           HalvexPDFLibraryCPDylibCPP1311* document = nullptr) {
    DialogLoadStruct info{};
    info.document = document;
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

QString fileOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) ? QDir::cleanPath(QString::fromLocal8Bit(info.dli_fname)) : QString();
}

TEST_F(TwoActions, HaveAKitOfTheirOwn) {
  for (Action* action : {&baseUrl_, &title_}) {
    action->Show({}, [action](QDialog& dialog) {
      const QMetaObject* shell = dialog.metaObject()->superClass();
      EXPECT_STREQ(shell->className(), "CVorlaneDialog");
      EXPECT_EQ(fileOf(shell), QDir::cleanPath(action->file));
      dialog.reject();
    });
    void* const library = dlopen(action->file.toLocal8Bit(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    for (const char* symbol : {"_ZN14CVorlaneDialog16staticMetaObjectE", "_Z16InitKitResourcesv"}) {
      EXPECT_EQ(dlsym(library, symbol), nullptr) << symbol;
    }
    dlclose(library);
  }
}

TEST_F(TwoActions, DoNotSeeEachOthersStaticData) {
  Action first(argument(2) + "/First.so", {});
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
  call(second, nullptr, "2");  // which has no label yet
  EXPECT_EQ(firstLabel->text(), "1");
  call(second, &secondParent, "3");
  call(first, nullptr, "4");
  EXPECT_EQ(firstLabel->text(), "4");
  EXPECT_EQ(secondLabel->text(), "3");
}

TEST_F(TwoActions, ShowTheirOwnImages) {
  QImage images[2];
  int next = 0;
  for (Action* action : {&baseUrl_, &title_}) {
    action->Show({}, [&](QDialog& dialog) {
      EXPECT_FALSE(dialog.windowIcon().pixmap(128, QIcon::Disabled).isNull());
      images[next++] = dialog.windowIcon().pixmap(128, QIcon::Selected).toImage();
      for (const auto* button : dialog.findChildren<QToolButton*>()) EXPECT_FALSE(button->icon().pixmap(20).isNull());
      dialog.reject();
    });
  }
  EXPECT_EQ(images[0].size(), QSize(128, 128));
  EXPECT_EQ(images[1].size(), QSize(128, 128));
  EXPECT_NE(images[0], images[1]);
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

TEST_F(TwoActions, WorkOnADocumentOfThisProcess) {
  makeList(baseUrl_, title_);
  const QSettings list(CUtils::GetSequenceFolder() + "/Both.xqq", QSettings::IniFormat);
  HalvexPDFLibraryCPDylibCPP1311 document(
      (argument(1) + "/lib/vorlane/HalvexPDFLibraryCPDylib1311.dylib").toStdWString());
  ASSERT_TRUE(document.LibraryLoaded());
  ASSERT_EQ(document.LoadFromFile(QStringLiteral(SAMPLES "/tex-xref-stream.pdf").toStdWString(), L""), 1);
  int step = 0;
  for (Action* action : {&baseUrl_, &title_}) {
    EXPECT_EQ(list.value(QStringLiteral("ActionName%1").arg(step)), action->interface->GetActionName());
    Map settings = list.value(QStringLiteral("ActionPrefs%1").arg(step++)).toMap();
    WorkProcInfoStruct info{&document, nullptr, nullptr, nullptr, &settings};
    EXPECT_EQ(action->interface->WorkProc(&info), 0);
  }
  EXPECT_EQ(document.GetBaseURL(), kUrl.toStdWString());
  EXPECT_EQ(document.GetInformation(kInformationTitle), kTitle.toStdWString());
  // The example's dialog starts from the open document, as the kit's own action's does.
  title_.Show(
      {{"titleString", "stored"}},
      [](QDialog& dialog) {
        EXPECT_EQ(Child<QLineEdit>(dialog, "titleEdit").text(), kTitle);
        dialog.reject();
      },
      &document);
  EXPECT_EQ(document.SaveToFile(L"saved.pdf"), 1);
  expectBoth("saved.pdf");
}

}  // namespace
