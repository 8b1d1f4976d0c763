// SPDX-License-Identifier: Apache-2.0
// What a person does in the window, through its widgets.
#include <gtest/gtest.h>

#include <memory>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>
#include <QUrl>

#include "host/actions/ActionCatalog.h"
#include "host/files/HostFolders.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/ui/Desktop.h"
#include "host/window/ui/Favorites.h"
#include "host/window/ui/ListDialog.h"
#include "host/window/ui/MainWindow.h"
#include "host/window/ui/SettingsDialogRunner.h"
#include "plugin/CActionInterface.h"
#include "tests/dialogs/MeetDialog.h"
#include "tests/host/window/WindowTools.h"
#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"

namespace {

const char* const kUrl = "https://example.org/manual/";
const char* const kSettings = "SetBaseURLPrefsDialog";

void Click(QWidget& widget) {
  QTest::mouseClick(&widget, Qt::LeftButton);
}

void EnterUrl(QDialog& dialog, const char* url) {
  Child<QLineEdit>(dialog, "lineEdit").setText(QLatin1String(url));
}

// Enters the URL in the settings dialog when it comes, and accepts.
void MeetSettings(const char* url, QString* shown = nullptr) {
  MeetDialog(QLatin1String(kSettings), [=](QDialog& dialog) {
    if (shown) *shown = Child<QLineEdit>(dialog, "lineEdit").text();
    EnterUrl(dialog, url);
    Click(Child<QPushButton>(dialog, "okButton"));
  });
}

// Presses a button of a message box when it comes, and keeps its text.
void MeetBox(const char* name, bool yes, QString* text = nullptr) {
  MeetDialog(QLatin1String(name), [=](QDialog& dialog) {
    if (text) *text = qobject_cast<QMessageBox*>(&dialog)->text();
    yes ? Click(Child<QPushButton>(dialog, "yes")) : dialog.reject();
  });
}

// An action of others, whose settings dialog stays open after its header button.
class StayingAction : public CActionInterface {
 public:
  int WorkProc(WorkProcInfoStruct*) override { return 0; }
  int ShowDialogProc(QWidget* parent, DialogLoadStruct*) override {
    QDialog settings(parent);
    QTimer soon;
    soon.setSingleShot(true);
    QObject::connect(&soon, &QTimer::timeout, [&settings] {
      QDialog header(&settings);
      header.setObjectName("saveAsCollectionDialog");
      QMetaObject::invokeMethod(&header, "reject", Qt::QueuedConnection);
      header.exec();
      QTest::keyClick(&settings, Qt::Key_Escape);
    });
    soon.start(0);
    return settings.exec();
  }
  int PreSequenceProc(WorkProcInfoStruct*) override { return 1; }
  int PostSequenceProc(WorkProcInfoStruct*) override { return 1; }
  QString GetActionName() override { return "Staying"; }
  QString GetDisplayName() override { return "Staying"; }
  QString GetActionHelp() override { return {}; }
  QString GetGroupName() override { return {}; }
  int GetActionFlags() override { return 0; }
  QString GetDefaultIcon() override { return {}; }
};

class Window : public testing::Test {
 protected:
  Window() {
    qputenv("VORLANE_TOOLS_PATH",
            QFileInfo(SETBASEURL_FILE).path().toLocal8Bit() + ':' + QFileInfo(PROBEACTION_FILE).path().toLocal8Bit());
    SetupHostFolders();
    Make();
  }
  ~Window() override { qunsetenv("VORLANE_TOOLS_PATH"); }

  void Make() {
    window_ = std::make_unique<MainWindow>();
    window_->show();
    EXPECT_TRUE(Await([&] { return Tree().topLevelItemCount() > 0; }));
  }

  QTreeWidget& Tree() { return Child<QTreeWidget>(*window_, "actions"); }
  QTreeWidgetItem* Item(const QString& text) { return Tree().findItems(text, Qt::MatchExactly).value(0); }
  void Choose(const QString& text) {
    QTreeWidgetItem* item = Item(text);
    ASSERT_NE(item, nullptr) << text.toStdString();
    Tree().scrollToItem(item);
    QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {}, Tree().visualItemRect(item).center());
  }
  // What the entry's own menu does.
  void UseMenu(const QString& entry, const QString& command) {
    const QPoint place = Tree().visualItemRect(Item(entry)).center();
    QTimer soon;
    soon.setSingleShot(true);
    QObject::connect(&soon, &QTimer::timeout, [command] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      for (QAction* action : menu->actions()) {
        if (action->text().remove(QLatin1Char('&')) != command) continue;
        menu->close();
        action->trigger();
        return;
      }
      menu->close();
      FAIL() << "no command " << command.toStdString();
    });
    soon.start(0);
    emit Tree().customContextMenuRequested(place);
  }

  FileTableModel& Model() { return *window_->findChild<FileTableModel*>(); }
  bool AwaitAll(FileState state, int atLeast = 1) {
    return Await([&] { return Model().Count() >= atLeast && Model().PathsWith(state).size() == Model().Count(); });
  }
  void Open(const QStringList& paths) {
    const int before = Model().Count();
    window_->Open(paths);
    ASSERT_TRUE(Await([&] { return Model().Count() > before; }));
  }
  void ChooseUrl(const char* url = kUrl) {
    MeetSettings(url);
    Choose("Set Base URL");
  }
  void Run() { Click(Child<QPushButton>(*window_, "run")); }
  QString Text(const char* label) { return Child<QLabel>(*window_, label).text(); }
  QString Status() { return Text("status").remove(QRegularExpression("<[^>]*>")); }
  bool IsShown(const char* button) { return Child<QPushButton>(*window_, button).isVisible(); }
  void Trigger(const QString& text) {
    for (QAction* action : window_->findChildren<QAction*>()) {
      if (action->text().remove(QLatin1Char('&')) == text) return action->trigger();
    }
    FAIL() << "no command " << text.toStdString();
  }

  void RunCopiedCommand() {
    Trigger("Copy as Command");
    const QString command = QApplication::clipboard()->text();
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", QFileInfo(VORLANE_RUN_FILE).path() + ':' + environment.value("PATH"));
    shell.setProcessEnvironment(environment);
    shell.start("sh", {"-c", command});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 0) << command.toStdString();
  }

  Runner runner_;
  std::unique_ptr<MainWindow> window_;
};

TEST_F(Window, FilesAreAddedAndRunAndTheOriginalsKept) {
  EXPECT_FALSE(Child<QPushButton>(*window_, "run").isEnabled());
  EXPECT_EQ(Status(), "Add the files that are to be worked on.");
  const QByteArray original = MakePdf();
  MakePdfs({"in/a.pdf", "in/b.pdf", "in/below/c.pdf"}, original);
  Open({"in"});
  ASSERT_TRUE(AwaitAll(FileState::kReady, 3));
  EXPECT_EQ(Status(), "Choose on the left what is to be done with the files.");
  ChooseUrl();
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl)));
  ASSERT_TRUE(Await([&] { return Text("after") == QLatin1String(kUrl); }));
  EXPECT_EQ(Text("before"), "none");
  Run();
  ASSERT_TRUE(AwaitAll(FileState::kDone));
  ASSERT_TRUE(Await([&] { return IsShown("openResults"); }));
  EXPECT_EQ(Status(), "3 done");
  EXPECT_FALSE(IsShown("retry"));
  for (const char* name : {"in/a.pdf", "in/b.pdf", "in/below/c.pdf"}) {
    EXPECT_EQ(BaseUrlOf(name), kUrl);
    EXPECT_EQ(ReadFile(QLatin1String(name) + ".bak"), original);
  }
  // Read anew, the table shows what is in the files now, and the settings are among the recent ones.
  EXPECT_TRUE(
      Await([&] { return Model().index(0, FileTableModel::kBaseUrl).data().toString() == QLatin1String(kUrl); }));
  EXPECT_NE(Item(QLatin1String(kUrl)), nullptr);
}

TEST_F(Window, TheSettingsStartWithTheSelectedDocumentAndNewOnesWithWhatWasEnteredLast) {
  Open(MakePdfs({"a.pdf"}, MakePdf("/URI << /Base (https://old.example/) >>")));
  ASSERT_TRUE(AwaitAll(FileState::kReady));
  QString shown;
  MeetSettings(kUrl, &shown);
  Choose("Set Base URL");
  EXPECT_EQ(shown, "https://old.example/");
  MeetSettings(kUrl, &shown);
  Trigger(QString::fromUtf8("Edit Settings…"));
  EXPECT_EQ(shown, kUrl) << "edited are the chosen settings and not the document's";
  EXPECT_EQ(CActionUtils::GetLastEnteredLinks("Links_baseUrlString"), QStringList(kUrl));
}

TEST_F(Window, TheHeaderButtonsOfTheSettingsDialogKeepWhatWasEntered) {
  // A favorite: the dialog itself only closes.
  MeetDialog(kSettings, [](QDialog& dialog) {
    EnterUrl(dialog, kUrl);
    MeetDialog("saveAsCollectionDialog", [](QDialog& favorite) {
      Child<QLineEdit>(favorite, "collectionNameLineEdit").setText("My manual");
      Click(Child<QPushButton>(favorite, "saveButton"));
    });
    Click(Child<QToolButton>(dialog, "VDtoolbarAddToCollectionsButton"));
  });
  Choose("Set Base URL");
  ASSERT_EQ(Favorites::All().size(), 1);
  EXPECT_EQ(Favorites::All()[0].settings, (QMap<QString, QVariant>{{"baseUrlString", kUrl}}));
  ASSERT_NE(Item("My manual"), nullptr);
  EXPECT_FALSE(Item("My manual")->icon(0).isNull());
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl)));

  // A list appears with its category.
  MeetDialog(kSettings, [](QDialog& dialog) {
    EnterUrl(dialog, kUrl);
    MeetDialog("saveAsActionlistDialog", [](QDialog& list) {
      Child<QLineEdit>(list, "actionListNameLineEdit").setText("My list");
      Child<QComboBox>(list, "categoryComboBox").setEditText("Work");
      Click(Child<QPushButton>(list, "saveButton"));
    });
    Click(Child<QToolButton>(dialog, "VDtoolbarAddToActionListButton"));
  });
  Choose("Set Base URL");
  EXPECT_NE(Item("Action Lists: Work"), nullptr);
  ASSERT_NE(Item("My list"), nullptr);
  EXPECT_EQ(Tree().currentItem(), Item("My list"));

  // A cancelled one leads back to the settings.
  QString again;
  MeetDialog(kSettings, [&](QDialog& dialog) {
    EnterUrl(dialog, "https://typed.example/");
    MeetDialog("saveAsCollectionDialog", [&](QDialog& favorite) {
      MeetSettings("https://then.example/", &again);
      favorite.reject();
    });
    Click(Child<QToolButton>(dialog, "VDtoolbarAddToCollectionsButton"));
  });
  Choose("Set Base URL");
  EXPECT_EQ(again, "https://typed.example/");
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains("then.example"));
}

TEST_F(Window, ASettingsDialogThatOutlivesItsHeaderDialogIsCancelledAsUsual) {
  StayingAction action;
  EXPECT_FALSE(SettingsDialogRunner(window_.get()).Run(action, {}, nullptr).accepted);
}

TEST_F(Window, AListThatCannotBeWrittenIsReported) {
  ASSERT_TRUE(QDir().rmdir(CActionUtils::GetSequenceFolder()));
  WriteFile(CActionUtils::GetSequenceFolder(), "in the way");
  QString warning;
  MeetDialog(kSettings, [&](QDialog& dialog) {
    MeetDialog("saveAsActionlistDialog", [&](QDialog& list) {
      Child<QLineEdit>(list, "actionListNameLineEdit").setText("My list");
      MeetBox("warning", false, &warning);
      Click(Child<QPushButton>(list, "saveButton"));
    });
    Click(Child<QToolButton>(dialog, "VDtoolbarAddToActionListButton"));
  });
  Choose("Set Base URL");
  EXPECT_TRUE(warning.contains("could not be written")) << warning.toStdString();
}

TEST_F(Window, FavoritesAreSavedRenamedUsedAndRemoved) {
  ChooseUrl();
  MeetDialog("favoriteDialog", [](QDialog& dialog) {
    Child<QLineEdit>(dialog, "favoriteName").setText("Handbook");
    dialog.accept();
  });
  Trigger(QString::fromUtf8("Save as Favorite…"));
  ASSERT_NE(Item("Handbook"), nullptr);

  MeetDialog("", [](QDialog& dialog) {
    dialog.findChild<QLineEdit*>()->setText("Guide");
    dialog.accept();
  });
  UseMenu("Handbook", QString::fromUtf8("Rename…"));
  EXPECT_TRUE(Await([&] { return Item("Guide") && !Item("Handbook"); }));
  ASSERT_EQ(Favorites::All().size(), 1);
  EXPECT_EQ(Favorites::All()[0].icon.availableSizes(), QList<QSize>{QSize(42, 42)});

  ChooseUrl("https://other.example/");
  Choose("Guide");
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl)));

  // Edited, it is saved under its name again.
  MeetSettings("https://new.example/");
  Trigger(QString::fromUtf8("Edit Settings…"));
  MeetDialog("favoriteDialog", [](QDialog& dialog) {
    EXPECT_EQ(Child<QLineEdit>(dialog, "favoriteName").text(), "Guide");
    EXPECT_EQ(Child<QLabel>(dialog, "saveMessage").text(), "The favorite of this name will be replaced.");
    dialog.accept();
  });
  Trigger(QString::fromUtf8("Save as Favorite…"));
  ASSERT_EQ(Favorites::All().size(), 1);
  EXPECT_EQ(Favorites::All()[0].settings.value("baseUrlString"), "https://new.example/");

  QString question;
  MeetBox("confirm", false, &question);
  UseMenu("Guide", QString::fromUtf8("Remove…"));
  EXPECT_EQ(question, "Remove the favorite \"Guide\"?");
  EXPECT_EQ(Favorites::All().size(), 1);
  MeetBox("confirm", true);
  UseMenu("Guide", QString::fromUtf8("Remove…"));
  EXPECT_TRUE(Favorites::All().isEmpty());
  EXPECT_TRUE(Await([&] { return Item("Guide") == nullptr; }));
}

TEST_F(Window, NamesThatCannotBeFavoritesAreRefused) {
  const QStringList names{"",          "  ",      "a/b",   "a\\b",      " a",
                          "a ",        ".hidden", "what?", "tab\there", QString(300, QLatin1Char('x')),
                          "line\nfeed"};
  for (const QString& name : names) {
    EXPECT_FALSE(Favorites::NameProblem(name).isEmpty()) << name.toStdString();
    EXPECT_FALSE(Favorites::Save({{}, name, {}, "Set Base URL", {}}).isEmpty()) << name.toStdString();
  }
  EXPECT_TRUE(Favorites::NameProblem(QString::fromUtf8("Größe 100 %1")).isEmpty());
  EXPECT_TRUE(Favorites::All().isEmpty());
}

TEST_F(Window, WhatAnotherProgramWritesAppears) {
  ASSERT_EQ(RunProgram({"lists", "add", "From outside", "--action", "Set Base URL", "--set",
                        QLatin1String("baseUrlString=") + kUrl})
                .code,
            0);
  EXPECT_TRUE(Await([&] { return Item("From outside") != nullptr; }));
  Choose("From outside");
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl)));
  MeetBox("confirm", true);
  UseMenu("From outside", QString::fromUtf8("Remove…"));
  EXPECT_TRUE(Await([&] { return Item("From outside") == nullptr; }));
  EXPECT_TRUE(ActionListFile::All().isEmpty());
}

TEST_F(Window, AListIsEdited) {
  const QString url = QStringLiteral("baseUrlString=");
  for (const char* each : {"https://one/", "https://two/"}) {
    ASSERT_EQ(RunProgram({"lists", "add", "My list", "--action", "Set Base URL", "--set", url + each}).code, 0);
  }
  ASSERT_EQ(RunProgram({"lists", "add", "Other", "--action", "Probe"}).code, 0);
  QSettings(ActionListFile::PathOf("My list"), QSettings::IniFormat).setValue("Foreign", "stays");
  ASSERT_TRUE(Await([&] { return Item("My list") && Item("Other"); }));
  Choose("My list");
  MeetDialog("listDialog", [](QDialog& dialog) {
    Click(Child<QPushButton>(dialog, "stepDown"));
    MeetSettings("https://new/");
    Click(Child<QPushButton>(dialog, "stepSettings"));
    MeetSettings("https://added/");
    for (QAction* action : dialog.findChild<QMenu*>()->actions()) {
      if (action->text() == "Set Base URL") action->trigger();
    }
    Child<QLineEdit>(dialog, "listName").setText("a/b");
    EXPECT_FALSE(Child<QLabel>(dialog, "saveMessage").text().isEmpty());
    Child<QLineEdit>(dialog, "listName").setText("New name");
    dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
  });
  Click(Child<QPushButton>(*window_, "editSettings"));
  const auto urls = [](const QString& file) {
    QStringList found;
    for (const auto& entry : ActionListFile::Read(file).entries) found += entry.settings["baseUrlString"].toString();
    return found;
  };
  const QString renamed = ActionListFile::PathOf("New name");
  EXPECT_EQ(urls(renamed), QStringList({"https://two/", "https://new/", "https://added/"}));
  EXPECT_FALSE(QFile::exists(ActionListFile::PathOf("My list")));
  EXPECT_EQ(QSettings(renamed, QSettings::IniFormat).value("Foreign"), "stays");
  EXPECT_TRUE(Await([&] { return Item("New name") && !Item("My list"); }));
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains("3. "));

  // Another list's name, a list that was changed meanwhile, and an empty one.
  const QByteArray other = ReadFile(ActionListFile::PathOf("Other"));
  MeetDialog("listDialog", [&](QDialog& dialog) {
    auto* save = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save);
    Child<QLineEdit>(dialog, "listName").setText("Other");
    MeetBox("confirm", false);
    save->click();
    Child<QLineEdit>(dialog, "listName").setText("New name");
    ASSERT_EQ(RunProgram({"lists", "add", "New name", "--action", "Probe"}).code, 0);
    MeetBox("confirm", false);
    save->click();
    for (int i = 0; i < 3; ++i) Click(Child<QPushButton>(dialog, "stepRemove"));
    EXPECT_FALSE(save->isEnabled());
    dialog.reject();
  });
  UseMenu("New name", QString::fromUtf8("Edit List…"));
  EXPECT_EQ(ReadFile(ActionListFile::PathOf("Other")), other);
  EXPECT_EQ(urls(renamed).size(), 4);

  WriteFile("damaged.xqq", "[General]\nActionName0=A\nActionName2=B\n");
  MeetBox("warning", false);
  ActionCatalog none({});
  EXPECT_EQ(ListDialog::Edit(window_.get(), none, "damaged.xqq"), QString());
}

// The marked entry is what will be run.
TEST_F(Window, WhatIsMarkedIsWhatWasChosen) {
  const auto marked = [&] {
    const QTreeWidgetItem* item = Tree().selectedItems().value(0);
    return item ? item->text(0).toStdString() : std::string();
  };
  Open(MakePdfs({"a.pdf"}));
  Tree().setFocus();
  window_->Open({QStringLiteral(VORLANE_SAMPLES "/Set_Base_URL.xqq")});
  EXPECT_EQ(marked(), "Set_Base_URL");
  MeetDialog(kSettings, [](QDialog& dialog) { dialog.reject(); });
  Choose("Set Base URL");
  EXPECT_EQ(marked(), "Set_Base_URL");
  ChooseUrl("https://first.example/");
  EXPECT_EQ(marked(), "Set Base URL");
  Run();
  ASSERT_TRUE(Await([&] { return Item("https://first.example/"); }));
  ChooseUrl("https://second.example/");
  Run();
  ASSERT_TRUE(Await([&] { return Item("https://second.example/") && IsShown("openResults"); }));
  Choose("https://first.example/");
  Run();
  ASSERT_TRUE(Await([&] { return Tree().itemBelow(Item("Recent")) == Item("https://first.example/"); }));
  EXPECT_EQ(marked(), "https://first.example/");

  Make();
  Tree().setFocus();
  window_->StartWith("Set Base URL");
  MeetSettings(kUrl);
  EXPECT_TRUE(Await([&] { return marked() == "Set Base URL"; }));
}

TEST_F(Window, ListsAndSettingsFilesAreOpened) {
  Open(MakePdfs({"a.pdf"}));
  window_->Open({QStringLiteral(VORLANE_SAMPLES "/Set_Base_URL.xqq")});
  EXPECT_NE(Item("Set_Base_URL"), nullptr);
  EXPECT_TRUE(Child<QPushButton>(*window_, "run").isEnabled());
  EXPECT_EQ(Child<QPushButton>(*window_, "editSettings").text(), QString::fromUtf8("Edit Li&st…"));

  QSettings file("kept.tsf", QSettings::IniFormat);
  file.setValue("ToolSettings", QVariantMap{{"ActionName", "Set Base URL"}, {"baseUrlString", kUrl}});
  file.sync();
  window_->Open({"kept.tsf"});
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl)));
  EXPECT_TRUE(IsShown("editSettings"));

  WriteFile("broken.xqq", "not a list");
  WriteFile("broken.tsf", "no settings");
  file.setValue("ToolSettings", QVariantMap{{"ActionName", "Fly"}});
  file.sync();
  for (const char* bad : {"broken.xqq", "broken.tsf", "missing.xqq", "kept.tsf"}) {
    QString warning;
    MeetBox("warning", false, &warning);
    window_->Open({bad});
    EXPECT_FALSE(warning.isEmpty()) << bad;
  }
  EXPECT_TRUE(Text("choiceDetails").remove(QChar(0x200b)).contains(QLatin1String(kUrl))) << "the choice stays";
}

TEST_F(Window, FailedFilesAreTriedAgainWithAPassword) {
  QFile::copy(VORLANE_SAMPLES "/encrypted-user-password.pdf", "locked.pdf");
  WriteFile("bad.pdf", "no PDF at all");
  Open(MakePdfs({"good.pdf"}) + QStringList{"locked.pdf", "bad.pdf"});
  ChooseUrl();
  ASSERT_TRUE(Await([&] { return Model().PathsWith(FileState::kNeedsPassword).size() == 1; }));
  Run();
  ASSERT_TRUE(Await([&] { return IsShown("retry"); }));
  EXPECT_EQ(Status(), QString::fromUtf8("1 done · 1 failed · 1 need a password"));

  MeetDialog("passwordDialog", [](QDialog& dialog) {
    Child<QLineEdit>(dialog, "password").setText("tide");
    dialog.accept();
  });
  Click(Child<QPushButton>(*window_, "retry"));
  ASSERT_TRUE(Await([&] { return IsShown("retry"); }));
  EXPECT_EQ(Status(), QString::fromUtf8("2 done · 1 failed"));
  EXPECT_TRUE(QFile::exists("locked.pdf.bak"));
  EXPECT_FALSE(Model().Row(Model().RowOf(Here("bad.pdf"))).reason.isEmpty());
}

TEST_F(Window, AFolderThatCannotBeWrittenIsReportedForEachFileAndNothingIsLost) {
  WriteFile("in-the-way", "a file");
  const QByteArray original = MakePdf();
  Open(MakePdfs({"a.pdf"}, original));
  ChooseUrl();
  Child<QComboBox>(*window_, "place").setCurrentIndex(2);
  EXPECT_FALSE(Child<QPushButton>(*window_, "run").isEnabled()) << "no folder is named yet";
  Child<QLineEdit>(*window_, "outputFolder").setText(Here("in-the-way") + "/out");
  Run();
  ASSERT_TRUE(Await([&] { return IsShown("saveReport"); }));
  EXPECT_EQ(Model().PathsWith(FileState::kDone).size(), 0);
  EXPECT_EQ(ReadFile("a.pdf"), original);

  Child<QLineEdit>(*window_, "outputFolder").setText(Here("out"));
  Run();
  ASSERT_TRUE(AwaitAll(FileState::kDone));
  ASSERT_TRUE(Await([&] { return IsShown("openResults"); }));
  EXPECT_EQ(ReadFile("a.pdf"), original);
  EXPECT_EQ(BaseUrlOf("out/a.pdf"), kUrl);
}

TEST_F(Window, AnAddedFolderKeepsItsShapeInTheOutputFolder) {
  MakePdfs({"in/a.pdf", "in/x/a.pdf", "in/x/y/a.pdf", "other/b.pdf", "single/c.pdf"});
  window_->Open({"in/.", "./other//", Here("single/c.pdf")});
  ASSERT_TRUE(AwaitAll(FileState::kReady, 5));
  EXPECT_EQ(Model().Row(1).path, Here("in/x/a.pdf"));
  ChooseUrl();
  Child<QComboBox>(*window_, "place").setCurrentIndex(2);
  const QStringList results{"a.pdf", "b.pdf", "c.pdf", "x/a.pdf", "x/y/a.pdf"};
  for (const char* folder : {"window", "shell"}) {
    Child<QLineEdit>(*window_, "outputFolder").setText(Here(folder));
    if (folder == std::string("shell")) {
      RunCopiedCommand();
    } else {
      Run();
      ASSERT_TRUE(AwaitAll(FileState::kDone));
    }
    QStringList found;
    for (QDirIterator file(folder, QDir::Files, QDirIterator::Subdirectories); file.hasNext();) {
      found += file.next().section('/', 1);
    }
    found.sort();
    EXPECT_EQ(found, results) << folder;
  }
}

TEST_F(Window, AKilledRunLeavesTheWindowAndSaysWhatToDo) {
  Open(MakePdfs({"a.pdf", "b.pdf"}));
  ASSERT_TRUE(AwaitAll(FileState::kReady, 2));
  ChooseUrl();
  const Runner killed("kill -9 $$");
  Run();
  ASSERT_TRUE(Await([&] { return IsShown("retry"); }));
  EXPECT_TRUE(Child<QPushButton>(*window_, "run").isEnabled());
  EXPECT_TRUE(Model().PathsWith(FileState::kDone).isEmpty());
  EXPECT_TRUE(Model().PathsWith(FileState::kWaiting).isEmpty());
}

TEST_F(Window, WithoutABackupItAsksAndTheNextWindowBeginsWithOne) {
  Open(MakePdfs({"a.pdf"}));
  ChooseUrl();
  Child<QComboBox>(*window_, "place").setCurrentIndex(1);
  MeetBox("confirm", false);
  Run();
  EXPECT_EQ(BaseUrlOf("a.pdf"), "");
  MeetBox("confirm", true);
  Run();
  ASSERT_TRUE(AwaitAll(FileState::kDone));
  ASSERT_TRUE(Await([&] { return IsShown("openResults"); }));
  EXPECT_EQ(BaseUrlOf("a.pdf"), kUrl);
  EXPECT_FALSE(QFile::exists("a.pdf.bak"));
  window_->close();
  Make();
  EXPECT_EQ(Child<QComboBox>(*window_, "place").currentIndex(), 0);
}

TEST_F(Window, ClosingDuringARunAsksAndFinishesTheFilesInHand) {
  ASSERT_EQ(RunProgram({"lists", "add", "Slow", "--action", "Probe", "--set", "baseUrlString=https://x/"}).code, 0);
  QList<QByteArray> names;
  for (int i = 0; i < 60; ++i) names += "slow" + QByteArray::number(i) + ".pdf";
  Open(MakePdfs(names));
  ASSERT_TRUE(Await([&] { return Model().Count() == 60 && Item("Slow"); }));
  Choose("Slow");
  Run();
  ASSERT_TRUE(Await([&] { return !Model().PathsWith(FileState::kDone).isEmpty(); }));
  MeetBox("confirm", false);
  window_->close();
  EXPECT_TRUE(window_->isVisible());
  MeetBox("confirm", true);
  window_->close();
  ASSERT_TRUE(Await([&] { return !window_->isVisible(); }));
  EXPECT_GT(Model().PathsWith(FileState::kCancelled).size(), 0);
  EXPECT_TRUE(Model().PathsWith(FileState::kWaiting).isEmpty());
}

TEST_F(Window, FilesArePastedFilteredCopiedAndTakenOffTheList) {
  const QStringList paths = MakePdfs({"one.pdf", "two.pdf", "three.pdf"});
  auto* pasted = new QMimeData;
  pasted->setUrls({QUrl::fromLocalFile(paths[0]), QUrl::fromLocalFile(paths[1]), QUrl::fromLocalFile(paths[2])});
  QApplication::clipboard()->setMimeData(pasted);
  Trigger("Paste Files");
  ASSERT_TRUE(AwaitAll(FileState::kReady, 3));
  auto& table = Child<QAbstractItemView>(*window_, "files");
  Child<QLineEdit>(*window_, "filter").setText("TWO.");  // "tw" may be in the folder's random name
  EXPECT_EQ(table.model()->rowCount(), 1);
  table.setFocus();
  table.selectAll();
  Trigger("Copy Rows");
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith("two.pdf\tReady\t"));
  Trigger("Take Off the List");
  EXPECT_EQ(Model().Paths(), (QStringList{paths[0], paths[2]}));
  EXPECT_TRUE(QFile::exists(paths[1]));
  Child<QLineEdit>(*window_, "filter").clear();
  EXPECT_EQ(table.model()->rowCount(), 2);
}

TEST_F(Window, ItsCommandDoesTheSameInAShell) {
  Open(MakePdfs({"a b's.pdf"}));
  ChooseUrl();
  RunCopiedCommand();
  EXPECT_EQ(BaseUrlOf("a b's.pdf"), kUrl);
  EXPECT_TRUE(QFile::exists("a b's.pdf.bak"));
}

TEST_F(Window, ThePreviewOffersTheMissingSlash) {
  const struct {
    const char* url;
    const char* fixed;
  } cases[] = {{"https://example.org/manual", "https://example.org/manual/"},
               {"https://example.org", "https://example.org/"},
               {"https://example.org/manual/", nullptr},
               {"https://example.org/index.html", nullptr},
               {"https://example.org/find?q=", nullptr}};
  Open(MakePdfs({"a.pdf"}));
  for (const auto& [url, fixed] : cases) {
    ChooseUrl(url);
    ASSERT_TRUE(Await([&, shown = QLatin1String(url)] { return Text("after").section(' ', 0, 0) == shown; })) << url;
    EXPECT_EQ(Text("warnings").contains("Add the slash"), fixed != nullptr) << url;
    if (!fixed) continue;
    emit Child<QLabel>(*window_, "warnings").linkActivated("#");
    EXPECT_TRUE(Await([&, wanted = QLatin1String(fixed)] { return Text("after") == wanted; })) << url;
  }
}

TEST_F(Window, HelpShowsThePageOfTheAction) {
  ChooseUrl();
  Trigger("Help on the Action");
  auto* help = window_->findChild<QDialog*>("helpWindow");
  ASSERT_NE(help, nullptr);
  EXPECT_TRUE(Child<QTextEdit>(*help, "helpPage").toPlainText().contains("RFC"));
  EXPECT_EQ(CActionUtils::mInfoLabel, help->findChild<QTextEdit*>("helpPage"));
  window_.reset();
  EXPECT_EQ(CActionUtils::mInfoLabel, nullptr);
}

TEST_F(Window, LinksAreReadableOnDarkGround) {
  const QPalette usual = QApplication::palette();
  QPalette dark(QColor(40, 44, 48));
  dark.setColor(QPalette::Link, QColor(0, 0, 255));
  QApplication::setPalette(dark);
  Make();
  EXPECT_GT(qGray(QApplication::palette().color(QPalette::Link).rgb()), 128);
  QApplication::setPalette(usual);
}

TEST_F(Window, KeysBeginWithTheFirstFilesAndThenReachTheTable) {
  EXPECT_EQ(window_->focusWidget()->objectName(), "addFirstFiles");
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  Open(MakePdfs({"a.pdf"}));
  EXPECT_EQ(window_->focusWidget()->objectName(), "files");
}

TEST_F(Window, FileNamesOfAnyBytesBecomeUrlsOfTheseBytes) {
  EXPECT_EQ(Desktop::UrlOf(Here("a b\xff#%.pdf")).toEncoded(),
            "file://" + QDir::currentPath().toUtf8() + "/a%20b%FF%23%25.pdf");
}

TEST_F(Window, EveryTextIsTranslatedAndEveryControlHasAName) {
  const PseudoLocale locale;
  Make();
  Open(MakePdfs({"a.pdf"}));
  EXPECT_EQ(UntranslatedTexts(*window_).filter(QRegularExpression("[a-z]{3}")), QStringList());
  QStringList keys;
  for (const QAction* menu : window_->menuBar()->actions())
    keys += QKeySequence::mnemonic(menu->text().section('|', 1)).toString();
  for (const QWidget* widget : window_->findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible()) continue;
    if (widget->objectName().startsWith("qt_") || qobject_cast<const QMenuBar*>(widget)) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const bool hasText = button && !button->text().isEmpty();
    EXPECT_TRUE(hasText || !widget->accessibleName().isEmpty() || qobject_cast<const QLabel*>(widget))
        << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    if (!hasText) continue;
    // The pseudo-locale's own text comes before the bar.
    const QString key = QKeySequence::mnemonic(button->text().section('|', 1)).toString();
    EXPECT_FALSE(!key.isEmpty() && keys.contains(key)) << button->text().toStdString();
    keys += key;
  }
}

}  // namespace
