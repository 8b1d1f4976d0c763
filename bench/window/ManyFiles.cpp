// SPDX-License-Identifier: Apache-2.0
// many_files_bench FOLDER OUTPUT: gives the window a folder as if it was dropped, waits until all is read, and sets a
// base URL in all files, with the results in OUTPUT. Prints how long that takes, and the longest time for which the
// event loop did not get to its timer, in milliseconds. bench/window/compare-window starts it.
#include <cstdio>
#include <functional>
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <utility>

#include "host/base/NativeName.h"
#include "host/files/HostFolders.h"
#include "host/window/core/BatchRun.h"
#include "host/window/core/FactsReader.h"
#include "host/window/core/FileTableModel.h"
#include "host/window/core/FolderScanner.h"
#include "host/window/core/RunnerProcess.h"
#include "host/window/ui/MainWindow.h"
#include "utils/CUtils.h"

namespace {

constexpr int kTickMs = 2;

// The longest time between two turns of the event loop.
class Stall : public QObject {
 public:
  Stall() {
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { longest_ = qMax(longest_, sinceTick_.restart()); });
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.start(kTickMs);
    sinceTick_.start();
  }
  qint64 TakeLongest() { return std::exchange(longest_, 0); }

 private:
  QTimer timer_;
  QElapsedTimer sinceTick_;
  qint64 longest_ = 0;
};

template <typename T>
T& Part(MainWindow& window) {
  auto* part = window.findChild<T*>();
  if (!part) qFatal("the window has no %s", T::staticMetaObject.className());
  return *part;
}

void ProcessUntil(const std::function<bool()>& holds) {
  while (!holds()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void Report(const char* what, qint64 ms, Stall& stall) {
  std::printf("%s %lld %lld\n", what, static_cast<long long>(ms), static_cast<long long>(stall.TakeLongest()));
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  NativeName::InstallAsLocale();
  QApplication application(argc, argv);
  NativeName::InstallAsLocale();
  if (argc != 2) qFatal("usage: many_files_bench FOLDER");
  RunnerProcess::SetProgramFile(QStringLiteral(VORLANE_RUN_FILE));
  CUtils::SetAppName(QStringLiteral("vorlane-actions"));
  SetupHostFolders();
  MainWindow window;
  window.show();
  auto& model = Part<FileTableModel>(window);
  Stall stall;
  QElapsedTimer clock;
  clock.start();
  bool listed = false;
  QObject::connect(&Part<FolderScanner>(window), &FolderScanner::finished, &application, [&] { listed = true; });
  window.Open({QString::fromLocal8Bit(argv[1])});
  ProcessUntil([&] { return listed; });
  Report("listed", clock.elapsed(), stall);
  const auto& reader = Part<FactsReader>(window);
  ProcessUntil([&] { return !reader.IsReading() && reader.Left() == 0; });
  Report("read", clock.elapsed(), stall);

  auto& run = Part<BatchRun>(window);
  bool finished = false;
  QObject::connect(&run, &BatchRun::finished, &application, [&] { finished = true; });
  clock.restart();
  run.Start(model.Paths(), ActionChoice::Action("Set Base URL", {{"baseUrlString", "https://example.org/base/"}}),
            OutputChoice());
  ProcessUntil([&] { return finished; });
  Report("run", clock.elapsed(), stall);
  for (int row = 0; row < model.Count(); ++row) {
    const FileRow& file = model.Row(row);
    if (file.state != FileState::kDone) qFatal("%s: %s", qPrintable(file.path), qPrintable(file.reason));
  }
  return 0;
}
