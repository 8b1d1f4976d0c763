// SPDX-License-Identifier: Apache-2.0
// What a person does with pointer and keys, on an X server with a window manager.
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QProcess>
#include <QThread>
#include <QTreeWidget>
#include <QWindow>
#include <stdexcept>
#include <vector>

#include "host/files/HostFolders.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/core/RunnerProcess.h"
#include "host/window/ui/MainWindow.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/Sandbox.h"
#include "tests/support/XUser.h"

namespace {

const char* const kUrl = "https://example.org/manual/";

// A text without its shortcut and dots.
QString Plain(QString text) {
  return text.remove(QLatin1Char('&')).remove(QChar(0x2026)).remove(QStringLiteral("..."));
}

class WindowOnX : public testing::Test {
 protected:
  WindowOnX() {
    PrepareToRun();
    RunnerProcess::SetProgramFile(VORLANE_RUN_FILE);
    qputenv("VORLANE_TOOLS_PATH",
            QFileInfo(SETBASEURL_FILE).path().toLocal8Bit() + ':' + QFileInfo(PROBEACTION_FILE).path().toLocal8Bit());
    SetupHostFolders();
  }

  // Folders with the same files, each its own.
  static void MakeFolders(const QStringList& folders, int files, const QString& name = QStringLiteral("file")) {
    for (const QString& folder : folders) {
      QDir().mkpath(folder);
      for (int i = 0; i < files; ++i) {
        const QByteArray link = QByteArray("/Lang (x-") + QByteArray::number(i) + ')';
        WriteFile(QStringLiteral("%1/%2%3.pdf").arg(folder, name).arg(i, 3, 10, QLatin1Char('0')), MakePdf(link));
      }
    }
  }

  void Show() {
    window_ = std::make_unique<MainWindow>();
    window_->show();
  }

  // By its text or its name in the program.
  QPoint Button(const QString& text) {
    QPoint center;
    WId window = 0;
    XUser::Await("the button " + text.toStdString(), [&] {
      for (auto* button : window_->findChildren<QAbstractButton*>()) {
        if (!button->isVisible() || !button->isEnabled()) continue;
        if (button->objectName() != text && Plain(button->text()) != text) continue;
        window = button->window()->winId();
        center = button->mapTo(button->window(), button->rect().center());
        return true;
      }
      return false;
    });
    return XUser::OnScreen(window, center);
  }
  QPoint TreeItem(const QString& text) {
    QPoint center;
    XUser::Await("the entry " + text.toStdString(), [&] {
      for (auto* tree : window_->findChildren<QTreeWidget*>()) {
        for (QTreeWidgetItem* item : tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive)) {
          tree->scrollToItem(item);
          center = tree->viewport()->mapToGlobal(tree->visualItemRect(item).center());
          return true;
        }
      }
      return false;
    });
    return center;
  }
  static void AwaitActive(const char* what, const std::function<bool(QWidget*)>& isIt) {
    XUser::Await(what, [&] {
      QWidget* active = QApplication::activeWindow();
      return active && active->windowHandle()->isExposed() && isIt(active);
    });
  }
  void AwaitWindow() {
    AwaitActive("the window", [&](QWidget* active) { return active == window_.get(); });
  }
  int CountOf(FileState state) { return Model().PathsWith(state).size(); }
  FileTableModel& Model() { return *window_->findChild<FileTableModel*>(); }
  void AwaitAll(FileState state, int count) {
    XUser::Await("the files' state", [&] { return CountOf(state) == count; });
  }

  std::unique_ptr<MainWindow> window_;
};

TEST_F(WindowOnX, APersonSetsTheBaseUrlOfAFolderInAtMostSixClicksAndTheShellWritesTheSame) {
  MakeFolders({"window", "shell"}, 40);
  Show();
  int clicks = 0;
  QElapsedTimer clock;
  clock.start();
  XUser::Run([&](XUser& user) {
    AwaitWindow();
    user.Click(Button("Add Folder"));
    AwaitActive("the file dialog", [](QWidget* active) { return qobject_cast<QFileDialog*>(active) != nullptr; });
    user.Type(QDir("window").absolutePath());
    user.Press("Return");
    AwaitAll(FileState::kReady, 40);
    AwaitWindow();
    user.Click(TreeItem("Set Base URL"));
    AwaitActive("the settings", [](QWidget* active) { return active->windowTitle() == QLatin1String("Set Base URL"); });
    user.Type(kUrl);
    user.Press("Return");
    AwaitWindow();
    user.Click(Button("run"));
    AwaitAll(FileState::kDone, 40);
    clicks = user.Clicks();
  });
  EXPECT_LE(clicks, 6);
  std::cout << "clicks: " << clicks << ", from the window's start to the end: " << clock.elapsed() << " ms\n";

  ASSERT_EQ(RunProgram({"set-base-url", kUrl, "--in-place", "--backup", ".bak", "--recursive", "shell"}).code, 0);
  const QStringList names = QDir("shell").entryList(QDir::Files);
  EXPECT_EQ(names.size(), 80);
  EXPECT_EQ(QDir("window").entryList(QDir::Files), names);
  for (const QString& name : names)
    EXPECT_EQ(ReadFile("window/" + name), ReadFile("shell/" + name)) << name.toStdString();
}

TEST_F(WindowOnX, AFavoriteAndAListAreMadeChangedAndRun) {
  MakeFolders({"files"}, 2);
  Show();
  window_->Open({QDir("files").absolutePath()});
  const auto dialog = [](const char* name) {
    AwaitActive(name, [name](QWidget* active) { return active->objectName() == QLatin1String(name); });
  };
  const auto isEverywhere = [](const char* url) {
    return BaseUrlOf("files/file000.pdf") == url && BaseUrlOf("files/file001.pdf") == url;
  };
  XUser::Run([&](XUser& user) {
    AwaitWindow();
    AwaitAll(FileState::kReady, 2);
    user.Click(TreeItem("Set Base URL"));
    dialog("SetBaseURLPrefsDialog");
    user.Type("https://favorite.example/");
    user.Press("Return");
    AwaitWindow();
    user.Press("ctrl+d");
    dialog("favoriteDialog");
    user.Type("Mine");
    user.Press("Return");
    AwaitWindow();
    user.Click(TreeItem("Mine"));
    user.Press("F2");
    dialog("");
    user.Press("ctrl+a");
    user.Type("Renamed");
    user.Press("Return");
    AwaitWindow();
    user.Click(TreeItem("Renamed"));
    user.Click(Button("run"));
    XUser::Await("the favorite's base URL", [&] { return isEverywhere("https://favorite.example/"); });
    user.Click(Button("editSettings"));
    dialog("SetBaseURLPrefsDialog");
    user.Press("ctrl+a");
    user.Type("https://list.example/");
    user.Click(Button("VDtoolbarAddToActionListButton"));
    dialog("saveAsActionlistDialog");
    user.Type("My list");
    user.Press("Return");
    AwaitWindow();
    user.Click(TreeItem("My list"));
    user.Click(Button("editSettings"));
    dialog("listDialog");
    user.Click(Button("stepSettings"));
    dialog("SetBaseURLPrefsDialog");
    user.Press("ctrl+a");
    user.Type("https://edited.example/");
    user.Press("Return");
    dialog("listDialog");
    user.Click(Button("Save"));
    AwaitWindow();
    user.Click(Button("run"));
    XUser::Await("the list's base URL", [&] { return isEverywhere("https://edited.example/"); });
  });
}

TEST_F(WindowOnX, ACancelledRunLeavesEveryFileEitherDoneOrAsItWas) {
  MakeFolders({"files", "before"}, 60, "slow");
  ASSERT_EQ(
      RunProgram({"lists", "add", "Slow", "--action", "Probe", "--set", "baseUrlString=https://example.org/"}).code, 0);
  Show();
  window_->Open({QDir("files").absolutePath()});
  XUser::Run([&](XUser& user) {
    AwaitWindow();
    AwaitAll(FileState::kReady, 60);
    user.Click(TreeItem("Slow"));
    user.Click(Button("run"));
    XUser::Await("the first results", [&] { return CountOf(FileState::kDone) > 0; });
    user.Click(Button("cancel"));
    XUser::Await("the end", [&] { return CountOf(FileState::kDone) + CountOf(FileState::kCancelled) == 60; });
  });
  EXPECT_GT(CountOf(FileState::kCancelled), 0);
  for (const QString& path : Model().PathsWith(FileState::kCancelled)) {
    EXPECT_EQ(ReadFile(path), ReadFile("before/" + QFileInfo(path).fileName())) << path.toStdString();
  }
  for (const QString& path : Model().PathsWith(FileState::kDone)) {
    EXPECT_EQ(BaseUrlOf(path), "https://example.org/") << path.toStdString();
  }
  EXPECT_EQ(QDir("files").entryList({".*"}, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(WindowOnX, FilesAreDroppedFromAnotherProgram) {
  MakeFolders({"files"}, 3);
  Show();
  QProcess source;
  source.start(DRAGSOURCE_FILE, {QDir("files").absolutePath()});
  XUser::Run([&](XUser&) {
    const QString id = XUser::Do({"search", "--sync", "--onlyvisible", "--name", "^Files to drag$"}).simplified();
    XUser::Do({"windowactivate", "--sync", id});
    QPoint target;
    XUser::InGui([&] { target = window_->mapToGlobal(window_->rect().center()); });
    XUser::Move(QPoint(120, 800));
    XUser::Do({"mousedown", "1"});
    for (int step = 1; step <= 10; ++step) XUser::Move(QPoint(120, 800) + (target - QPoint(120, 800)) * step / 10);
    QThread::msleep(200);  // the programs agree on what is dragged
    XUser::Do({"mouseup", "1"});
    AwaitAll(FileState::kReady, 3);
  });
  source.terminate();
  EXPECT_TRUE(source.waitForFinished());
}

// The window of a program of its own, once it is there, with the keys going to it.
void Activate(const QProcess& program, const QString& title) {
  const QString pid = QString::number(program.processId());
  QString id;
  for (int tries = 0; id.isEmpty(); ++tries) {
    try {
      id = XUser::Do({"search", "--sync", "--onlyvisible", "--all", "--pid", pid, "--name", title}).simplified();
    } catch (const std::exception&) {
      // The search fails when a window goes away meanwhile.
      if (tries == 5) throw;
    }
  }
  XUser::Do({"windowactivate", "--sync", id});
}

bool HasChildren(const QProcess& program) {
  const QString pid = QString::number(program.processId());
  return !ReadFile(QStringLiteral("/proc/%1/task/%1/children").arg(pid)).isEmpty();
}

TEST_F(WindowOnX, TheEntryOfFileManagersNeedsNoPointerAndSpeaksGerman) {
  MakeFolders({"files"}, 3);
  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("LANG", "de_DE.UTF-8");
  program.setProcessEnvironment(environment);
  program.setProcessChannelMode(QProcess::ForwardedChannels);
  const QFileInfoList files = QDir("files").entryInfoList(QDir::Files);
  QStringList arguments{"--action", "Set Base URL"};
  for (const QFileInfo& file : files) arguments += file.filePath();
  program.start(VORLANE_ACTIONS_FILE, arguments);
  XUser::Run([&](XUser&) {
    Activate(program, "^Set Base URL$");
    XUser::Type(kUrl);
    XUser::Press("Return");
    Activate(program, "^PDF-Aktionen$");
    XUser::Press("ctrl+Return");
    for (const QFileInfo& file : files) {
      XUser::Await("the base URL", [&] { return BaseUrlOf(file.filePath()) == kUrl; });
    }
    // It would ask before it closes.
    XUser::Await("the end of the run", [&] { return !HasChildren(program); });
    XUser::Press("ctrl+q");
    XUser::Await("the end", [&] { return program.state() == QProcess::NotRunning; });
  });
  EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(WindowOnX, TwoWindowsOpenAtOnceAndEachClosesAlone) {
  MakeFolders({"one", "two"}, 2);
  std::vector<std::unique_ptr<QProcess>> programs;
  for (const char* folder : {"one", "two"}) {
    programs.push_back(std::make_unique<QProcess>());
    programs.back()->setProcessChannelMode(QProcess::ForwardedChannels);
    programs.back()->start(VORLANE_ACTIONS_FILE, {QDir(folder).absolutePath()});
  }
  XUser::Run([&](XUser&) {
    // A window that comes later would take the keys.
    for (const auto& program : programs) Activate(*program, "^PDF Actions$");
    for (const auto& program : programs) {
      Activate(*program, "^PDF Actions$");
      XUser::Press("ctrl+q");
      XUser::Await("its end", [&] { return program->state() == QProcess::NotRunning; });
      EXPECT_EQ(program->exitCode(), 0);
    }
  });
}

}  // namespace
