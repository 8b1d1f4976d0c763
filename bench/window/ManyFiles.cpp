// SPDX-License-Identifier: Apache-2.0
// many_files_bench FOLDER: gives the window a folder as if it was dropped, waits until all is read, and sets a base URL
// in all files. Prints for each of these how long it took since the folder was dropped or the run began, the longest
// time for which the event loop did not get to its timer, and the processor time of this program, without that of
// vorlane-run; in milliseconds. bench/window/compare-window starts it.
#include <sys/resource.h>

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
constexpr int kSettlingMs = 500;

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

// Milliseconds.
long long ProcessorTime() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000LL +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
}

class Reporter {
 public:
  void Begin() {
    clock_.start();
    processorTime_ = ProcessorTime();
    stall_.TakeLongest();
  }
  void Report(const char* what) {
    std::printf("%s %lld %lld %lld\n", what, clock_.elapsed(), stall_.TakeLongest(), ProcessorTime() - processorTime_);
    std::fflush(stdout);
  }

 private:
  Stall stall_;
  QElapsedTimer clock_;
  long long processorTime_ = 0;
};

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
  // Files are dropped on a window that is there, with its actions.
  bool settled = false;
  QTimer::singleShot(kSettlingMs, &application, [&] { settled = true; });
  ProcessUntil([&] { return settled; });
  Reporter reporter;
  reporter.Begin();
  bool listed = false;
  QObject::connect(&Part<FolderScanner>(window), &FolderScanner::finished, &application, [&] { listed = true; });
  window.Open({QString::fromLocal8Bit(argv[1])});
  ProcessUntil([&] { return listed; });
  reporter.Report("listed");
  const auto& reader = Part<FactsReader>(window);
  ProcessUntil([&] { return reader.Left() == 0; });
  reporter.Report("read");

  auto& run = Part<BatchRun>(window);
  bool finished = false;
  QObject::connect(&run, &BatchRun::finished, &application, [&] { finished = true; });
  reporter.Begin();
  run.Start(model.Paths(), ActionChoice::Action("Set Base URL", {{"baseUrlString", "https://example.org/base/"}}),
            OutputChoice());
  ProcessUntil([&] { return finished; });
  reporter.Report("run");
  for (int row = 0; row < model.Count(); ++row) {
    const FileRow& file = model.Row(row);
    if (file.state != FileState::kDone) qFatal("%s: %s", qPrintable(file.path), qPrintable(file.reason));
  }
  return 0;
}
