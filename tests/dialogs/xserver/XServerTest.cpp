// SPDX-License-Identifier: Apache-2.0
// The dialogs as a person meets them: a real X server, a window manager, real pointer and key events.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QToolButton>

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
constexpr char kFavoritesDialog[] = "saveAsCollectionDialog";

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

  static void showResizable(const std::function<void(Person&)>& act) {
    ResizableDialog dialog;
    Person::Watch(
        [&act](Person& person) {
          person.AwaitDialog("resizable");
          act(person);
          person.Press({"Escape"});
        },
        [&dialog] { dialog.exec(); });
  }

  static QRect frame(Person& person) {
    QRect frame;
    person.Look([&frame](QDialog& dialog) { frame = dialog.frameGeometry(); });
    return frame;
  }

  Map settings_;
  QWidget window_;
};

TEST_F(XServer, TheShellIsTranslucentAndAddsItsFrame) {
  const ResizableDialog dialog;
  EXPECT_TRUE(dialog.testAttribute(Qt::WA_TranslucentBackground));
  EXPECT_EQ(dialog.size(), QSize(416, 351));
  EXPECT_EQ(dialog.minimumSize(), QSize(416, 351));
}

TEST_F(XServer, TheHeaderMovesTheDialog) {
  EXPECT_EQ(showSettings([](Person& person) {
              const QRect start = frame(person);
              const QPoint header(start.left() + 60, start.top() + 20);
              person.Drag(header, header + QPoint(120, -90));
              person.AwaitFrame("the dialog to follow the pointer", start.translated(120, -90));
              person.Click("VDheaderWidget", 2);  // there is no maximized state
              person.Press({"Escape"});
            }),
            0);
}

TEST_F(XServer, EachEdgeAndCornerResizesDownToTheMinimum) {
  showResizable([](Person& person) {
    const QRect start = frame(person);
    const int midX = start.center().x();
    const int midY = start.center().y();
    struct Zone {
      const char* name;
      QPoint grip;
      QPoint outwards;
    };
    for (const Zone& zone :
         {Zone{"left", {start.left(), midY}, {-1, 0}}, Zone{"right", {start.right(), midY}, {1, 0}},
          Zone{"top", {midX, start.top()}, {0, -1}}, Zone{"bottom", {midX, start.bottom()}, {0, 1}},
          Zone{"top left", start.topLeft(), {-1, -1}}, Zone{"top right", start.topRight(), {1, -1}},
          Zone{"bottom left", start.bottomLeft(), {-1, 1}}, Zone{"bottom right", start.bottomRight(), {1, 1}}}) {
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
  });
}

TEST_F(XServer, TheCursorTellsWhatAnEdgeDoes) {
  showResizable([](Person& person) {
    const QRect r = frame(person);
    struct Zone {
      const char* name;
      QPoint at;
      Qt::CursorShape shape;
    };
    for (const Zone& zone :
         {Zone{"left", {r.left() + 1, r.center().y()}, Qt::SizeHorCursor}, Zone{"inside", r.center(), Qt::ArrowCursor},
          Zone{"bottom", {r.center().x(), r.bottom() - 1}, Qt::SizeVerCursor},
          Zone{"bottom left", {r.left() + 15, r.bottom() - 15}, Qt::SizeBDiagCursor},
          Zone{"right", {r.right() - 1, r.center().y()}, Qt::SizeHorCursor},
          Zone{"top right", {r.right() - 2, r.top() + 2}, Qt::SizeBDiagCursor},
          Zone{"header", {r.center().x(), r.top() + 20}, Qt::ArrowCursor},
          Zone{"top", {r.center().x(), r.top() + 2}, Qt::SizeVerCursor},
          Zone{"top left", {r.left() + 15, r.top() + 15}, Qt::SizeFDiagCursor},
          Zone{"bottom right", {r.right() - 15, r.bottom() - 15}, Qt::SizeFDiagCursor}}) {
      person.PointTo(zone.at);
      person.Await(zone.name, [&zone](QDialog& dialog) { return dialog.cursor().shape() == zone.shape; });
    }
  });
}

TEST_F(XServer, AFixedSizeStays) {
  showSettings([](Person& person) {
    const QRect start = frame(person);
    person.Drag(start.bottomRight() - QPoint(1, 1), start.bottomRight() + QPoint(50, 50));
    person.PointTo({start.left() + 1, start.center().y()});
    // A move afterwards proves that the drag before it was handled.
    const QPoint header(start.left() + 60, start.top() + 20);
    person.Drag(header, header + QPoint(10, 10));
    person.AwaitFrame("the moved dialog", start.translated(10, 10));
    person.Look([](QDialog& dialog) { EXPECT_EQ(dialog.cursor().shape(), Qt::ArrowCursor); });
    person.Press({"Escape"});
  });
}

TEST_F(XServer, TheKeyboardReachesEverything) {
  EXPECT_EQ(showSettings([](Person& person) {
              person.Type("http://typed.example/");
              person.Press({"Return"});
            }),
            1);
  EXPECT_EQ(settings_, Map({{"baseUrlString", "http://typed.example/"}, {"ActionName", "Set Base URL"}}));

  EXPECT_EQ(showSettings([](Person& person) {
              person.Press({"Tab", "space"});  // Clear
              person.Await("an empty field", [](QDialog& d) { return d.findChild<QLineEdit*>()->text().isEmpty(); });
              person.Press({"Tab", "Return"});  // OK
            }),
            1);
  EXPECT_EQ(settings_.value("baseUrlString"), "");

  settings_["baseUrlString"] = "kept";
  EXPECT_EQ(showSettings([](Person& person) {
              person.Type("lost");
              person.Press({"Tab", "Tab", "Tab", "Return"});  // Cancel
            }),
            0);
  EXPECT_EQ(settings_.value("baseUrlString"), "kept");
}

TEST_F(XServer, TheCloseButtonRejects) {
  EXPECT_EQ(showSettings([](Person& person) { person.Click("vorlaneHeaderCloseBtn"); }), 0);
}

TEST_F(XServer, TheToolbarStoresAnActionList) {
  for (const char* radio : {"newActionListRadioButton", "addToActionListRadioButton"}) {
    EXPECT_EQ(showSettings([radio](Person& person) {
                person.Type("http://listed.example/");
                person.Click("VDtoolbarAddToActionListButton");
                person.AwaitDialog(kListDialog);
                person.Click(radio);
                person.Click("actionListNameLineEdit");
                person.Type("My List");
                person.Press({"Return"});
                person.AwaitNo(kListDialog);
              }),
              0);
  }
  EXPECT_EQ(settings_, Map());
  QSettings list(CUtils::GetSequenceFolder() + "/My_List.xqq", QSettings::IniFormat);
  for (const char* key : {"ActionPrefs0", "ActionPrefs1"}) {
    EXPECT_EQ(list.value(key).toMap().value("baseUrlString"), "http://listed.example/") << key;
  }
  EXPECT_EQ(list.value("ActionName1"), "Set Base URL");
  EXPECT_FALSE(list.contains("ActionName2"));
}

TEST_F(XServer, AListOfTheDialogIsEditedAndRunByTheProgram) {
  EXPECT_EQ(showSettings([](Person& person) {
              person.Type("http://listed.example/");
              person.Click("VDtoolbarAddToActionListButton");
              person.AwaitDialog(kListDialog);
              person.Click("actionListNameLineEdit");
              person.Type("My List");
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

TEST_F(XServer, TheToolbarStoresAFavoriteWithAnIconAndASettingsFile) {
  const QString picture = QDir::homePath() + "/picture.png";
  QImage image(16, 16, QImage::Format_RGB32);
  image.fill(Qt::green);
  ASSERT_TRUE(image.save(picture));
  const QString file = QDir::homePath() + "/tool.tsf";
  EXPECT_EQ(showSettings([&](Person& person) {
              person.Type("http://favorite.example/");
              person.Click("VDtoolbarAddToCollectionsButton");
              person.AwaitDialog(kFavoritesDialog);
              person.Click("icon_toolButton");
              person.AwaitDialog("QFileDialog");
              person.Type(picture);
              person.Press({"Return"});
              person.AwaitDialog(kFavoritesDialog);
              person.Await("the chosen icon", [](QDialog& dialog) {
                const QIcon icon = dialog.findChild<QToolButton*>("icon_toolButton")->icon();
                return icon.pixmap(128, 128).toImage().pixelColor(64, 64) == QColor(Qt::green);
              });
              person.Click("saveSettingsToFileButton");
              person.AwaitDialog("QFileDialog");
              person.Press({"ctrl+a"});
              person.Type(file);
              person.Press({"Return"});
            }),
            0);
  const QSettings stored(file, QSettings::IniFormat);
  EXPECT_EQ(stored.value("ToolSettings").toMap(),
            Map({{"baseUrlString", "http://favorite.example/"}, {"ActionName", "Set Base URL"}}));

  EXPECT_EQ(showSettings([](Person& person) {
              person.Click("VDtoolbarAddToCollectionsButton");
              person.AwaitDialog(kFavoritesDialog);
              person.Click("collectionNameLineEdit");
              person.Type("Mine");
              person.Press({"Return"});
            }),
            0);
}

TEST_F(XServer, EscapeClosesADialogOfTheToolbarAndWithItTheSettings) {
  for (const char* button : {"VDtoolbarAddToActionListButton", "VDtoolbarAddToCollectionsButton"}) {
    EXPECT_EQ(showSettings([button](Person& person) {
                person.Click(button);
                person.AwaitNo(kSettingsDialog);
                person.Await("the second dialog", [](QDialog& dialog) { return dialog.isActiveWindow(); });
                person.Press({"Escape"});
              }),
              0);
  }
  EXPECT_TRUE(QDir(CUtils::GetSequenceFolder()).isEmpty());
}

TEST_F(XServer, NoTextIsCutOff) {
  const auto expectRoom = [](QDialog& dialog) {
    const auto expectFits = [&dialog](const QWidget& widget, const QString& text) {
      if (!widget.isVisible()) return;
      const std::string name = widget.objectName().toStdString();
      EXPECT_TRUE(dialog.rect().contains(QRect(widget.mapTo(&dialog, QPoint()), widget.size()))) << name;
      if (widget.hasHeightForWidth()) {
        EXPECT_GE(widget.height(), widget.heightForWidth(widget.width())) << name;
      } else {
        // Anti-aliasing adds up to two empty pixels at each side.
        const QSize needed = widget.fontMetrics().tightBoundingRect(text).size() - QSize(4, 4);
        EXPECT_GE(widget.width(), needed.width()) << name;
        EXPECT_GE(widget.height(), needed.height()) << name;
      }
    };
    for (auto* button : dialog.findChildren<QPushButton*>()) expectFits(*button, button->text());
    for (auto* button : dialog.findChildren<QRadioButton*>()) expectFits(*button, button->text());
    for (auto* label : dialog.findChildren<QLabel*>()) expectFits(*label, label->text());
  };
  for (const char* context : {"VorlaneClass", "VorlanePreviewClass", ""}) {
    window_.setObjectName(context);
    showSettings([&](Person& person) {
      person.Look(expectRoom);
      person.Press({"Escape"});
    });
  }
  for (const auto& [button, dialog] : {std::make_pair("VDtoolbarAddToActionListButton", kListDialog),
                                       std::make_pair("VDtoolbarAddToCollectionsButton", kFavoritesDialog)}) {
    showSettings([&, button = button, dialog = dialog](Person& person) {
      person.Click(button);
      person.AwaitDialog(dialog);
      person.Look(expectRoom);
      person.Press({"Escape"});
    });
  }
}

}  // namespace
