// SPDX-License-Identifier: Apache-2.0
// WindowPictures PICTURES FILES RUNNER: opens the window on the folder FILES, chooses a favorite and selects a file
// with links; then runs. Saves what the screen shows before and after as PICTURES/window.png and window-done.png.
// RUNNER is vorlane-run. Run it through docs/pictures/make-screenshots.
#include <functional>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QTimer>
#include <QTranslator>
#include <QTreeWidget>
#include <QWindow>

#include "host/base/NativeName.h"
#include "host/files/HostFolders.h"
#include "host/window/core/BatchRun.h"
#include "host/window/core/FactsReader.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/core/Preview.h"
#include "host/window/core/RunnerProcess.h"
#include "host/window/ui/Favorites.h"
#include "host/window/ui/MainWindow.h"
#include "utils/CUtils.h"

namespace {

constexpr int kPatienceMs = 30000;
const char* const kFavorite = "Manuals of the web site";
const char* const kShownFile = "guide.pdf";

template <typename Signal, typename Sender>
void WaitFor(Sender* sender, Signal signal, const std::function<void()>& start) {
  QEventLoop loop;
  QObject::connect(sender, signal, &loop, &QEventLoop::quit);
  QTimer patience;
  QObject::connect(&patience, &QTimer::timeout, [] { qFatal("waited in vain"); });
  patience.start(kPatienceMs);
  start();
  loop.exec();
}

void WaitMs(int ms) {
  QEventLoop loop;
  QTimer::singleShot(ms, &loop, SLOT(quit()));
  loop.exec();
}

void SaveFavorite() {
  Favorite favorite;
  favorite.name = kFavorite;
  favorite.icon = QIcon(":/Vorlane/Resources/Collection.png");
  favorite.actionName = "Set Base URL";
  favorite.settings = {{"baseUrlString", "https://www.example.org/manuals/"}};
  const QString problem = Favorites::Save(favorite);
  if (!problem.isEmpty()) qFatal("%s", qPrintable(problem));
}

void SelectFile(QTableView& table, const QString& name) {
  for (int row = 0; row < table.model()->rowCount(); ++row) {
    if (table.model()->index(row, FileTableModel::kName).data().toString() == name) return table.selectRow(row);
  }
  qFatal("there is no %s", qPrintable(name));
}

void Save(const MainWindow& window, const QString& file) {
  WaitMs(500);  // painted, and hints are gone
  if (!window.screen()->grabWindow(window.winId()).save(file)) qFatal("cannot write %s", qPrintable(file));
}

}  // namespace

int main(int argc, char** argv) {
  NativeName::InstallAsLocale();
  QApplication application(argc, argv);
  NativeName::InstallAsLocale();
  if (argc != 4) qFatal("usage: WindowPictures PICTURES FILES RUNNER");
  const QDir pictures(argv[1]);
  RunnerProcess::SetProgramFile(argv[3]);
  CUtils::SetAppName("vorlane-actions");
  QTranslator english;
  english.load(":/Vorlane/Translations/vorlane-actions_en.qm");
  QCoreApplication::installTranslator(&english);
  SetupHostFolders();
  SaveFavorite();

  MainWindow window;
  window.resize(1180, 800);
  window.show();
  auto& reader = *window.findChild<FactsReader*>();
  window.Open({QString::fromLocal8Bit(argv[2])});
  while (reader.Left() > 0 || window.findChild<FileTableModel*>()->Count() == 0) WaitMs(50);
  auto& tree = *window.findChild<QTreeWidget*>("actions");
  QTreeWidgetItem* const favorite = tree.findItems(kFavorite, Qt::MatchExactly | Qt::MatchRecursive).value(0);
  if (favorite == nullptr) qFatal("the favorite is not shown");
  tree.setCurrentItem(favorite);
  SelectFile(*window.findChild<QTableView*>(), kShownFile);
  WaitFor(window.findChild<Preview*>(), &Preview::changed, [&] { emit tree.itemClicked(favorite, 0); });
  Save(window, pictures.filePath("window.png"));
  WaitFor(window.findChild<BatchRun*>(), &BatchRun::finished, [&] { window.findChild<QPushButton*>("run")->click(); });
  while (reader.Left() > 0) WaitMs(50);
  Save(window, pictures.filePath("window-done.png"));
  return 0;
}
