// SPDX-License-Identifier: Apache-2.0
// The dialogs as a person meets them: a real X server, a window manager, real pointer and key events.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QLineEdit>
#include <QPluginLoader>
#include <QSettings>

#include "dialogs/CVorlaneDialog.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/xserver/Person.h"
#include "tests/host/ProgramRun.h"
#include "tests/support/Sandbox.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

constexpr char kSettingsDialog[] = "SetBaseURLPrefsDialog";
constexpr char kListDialog[] = "saveAsActionlistDialog";

class ResizableDialog : public CVorlaneDialog {
 public:
  ResizableDialog() : CVorlaneDialog(nullptr, false) {
    setObjectName("resizable");
    auto* form = new QWidget(this);
    form->resize(400, 300);
    VDaddMainWidget(form, false);
  }
};

class XServer : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(QApplication::platformName(), "xcb");
    ASSERT_TRUE(CUtils::CheckOpenGLSupport()) << "the X server has no OpenGL";
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    CUtils::SetupFolders();
    window_.setObjectName("VorlaneClass");
  }

  int showSettings(const std::function<void(Person&)>& act) {
    QPluginLoader loader(QStringLiteral(SETBASEURL_FILE));
    auto* action = qobject_cast<CActionInterface*>(loader.instance());
    if (!action) {
      ADD_FAILURE() << loader.errorString().toStdString();
      return -1;
    }
    DialogLoadStruct info{};
    info.settings = &settings_;
    int result = -1;
    Person::Watch(
        [&act](Person& person) {
          person.AwaitDialog(kSettingsDialog);
          act(person);
        },
        [&] { result = action->ShowDialogProc(&window_, &info); });
    return result;
  }

  Map settings_;
  QWidget window_;
};

TEST_F(XServer, TheHeaderMovesAndTheEdgesResizeDownToTheMinimum) {
  ResizableDialog dialog;
  const auto act = [](Person& person) {
    person.AwaitDialog("resizable");
    QRect start;
    person.Look([&start](QDialog& shown) { start = shown.frameGeometry(); });
    const QPoint header(start.left() + 60, start.top() + 20);
    person.Drag(header, header + QPoint(120, -90));
    start.translate(120, -90);
    person.AwaitFrame("the dialog to follow the pointer", start);
    struct Zone {
      const char* name;
      QPoint grip;
      QPoint outwards;
      Qt::CursorShape cursor;
    };
    for (const Zone& zone : {Zone{"left", {start.left(), start.center().y()}, {-1, 0}, Qt::SizeHorCursor},
                             Zone{"top right", start.topRight(), {1, -1}, Qt::SizeBDiagCursor},
                             Zone{"bottom right", start.bottomRight(), {1, 1}, Qt::SizeFDiagCursor}}) {
      person.PointTo(zone.grip);
      person.Await(zone.name, [&zone](QDialog& shown) { return shown.cursor().shape() == zone.cursor; });
      const QPoint out = zone.outwards * 40;
      const QRect grown = start.adjusted(qMin(out.x(), 0), qMin(out.y(), 0), qMax(out.x(), 0), qMax(out.y(), 0));
      person.Drag(zone.grip, zone.grip + out);
      person.AwaitFrame(zone.name, grown);
      person.Drag(zone.grip + out, zone.grip);
      person.AwaitFrame(zone.name, start);
      person.Drag(zone.grip, zone.grip - out);  // below the minimum
      person.PointTo(start.center());
      person.AwaitFrame(zone.name, start);
    }
    person.Press({"Escape"});
  };
  Person::Watch(act, [&dialog] { dialog.exec(); });
}

TEST_F(XServer, TheKeyboardReachesTheButtons) {
  EXPECT_EQ(showSettings([](Person& person) {
              person.Type("typed");
              person.Press({"Tab", "space"});  // Clear
              person.Await("an empty field", [](QDialog& d) { return d.findChild<QLineEdit*>()->text().isEmpty(); });
              person.Press({"shift+Tab"});
              person.Type("http://typed.example/");
              person.Press({"Return"});
            }),
            1);
  EXPECT_EQ(settings_, Map({{"baseUrlString", "http://typed.example/"}, {"ActionName", "Set Base URL"}}));
}

TEST_F(XServer, AListOfTheDialogIsEditedAndRunByTheProgram) {
  EXPECT_EQ(showSettings([](Person& person) {
              person.Type("http://listed.example/");
              person.Click("VDtoolbarAddToActionListButton");
              person.AwaitDialog(kListDialog);
              person.Type("My List");  // the name field has the focus
              person.Press({"Return"});
            }),
            0);
  WriteFile("a.pdf", MakePdf());
  const QStringList run{"run", "--list", "My List", "--in-place", "a.pdf"};
  ProgramResult result = RunProgram(run);
  EXPECT_EQ(result.code, 0) << result.err.constData();
  EXPECT_EQ(BaseUrlOf("a.pdf"), "http://listed.example/");

  // The program's own dialog is in front of its main window and has the keyboard.
  const auto edit = [](const QStringList& keys) {
    const std::unique_ptr<QProcess> program = StartProgram({"edit", "--list", "My List", "--index", "0"});
    // xdotool dies when a window vanishes while it looks through the tree.
    bool focused = false;
    for (int attempt = 0; attempt < 5 && !focused; ++attempt) {
      focused = QProcess::execute("timeout", {"20", "xdotool", "search", "--sync", "--onlyvisible", "--name",
                                              "^Set Base URL$", "windowfocus", "--sync"}) == 0;
    }
    EXPECT_TRUE(focused);
    EXPECT_EQ(QProcess::execute("xdotool", QStringList{"key", "--delay", "20"} + keys), 0);
    return FinishProgram(*program);
  };
  EXPECT_EQ(edit({"x", "Escape"}).code, 1);
  result = edit({"ctrl+a", "y", "Return"});
  EXPECT_EQ(result.code, 0) << result.err.constData();
  EXPECT_EQ(QJsonDocument::fromJson(result.out).object(),
            QJsonObject({{"ActionName", "Set Base URL"}, {"baseUrlString", "y"}}));
  result = RunProgram(run);
  EXPECT_EQ(result.code, 0) << result.err.constData();
  EXPECT_EQ(BaseUrlOf("a.pdf"), "y");
}

}  // namespace
