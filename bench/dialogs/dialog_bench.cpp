// SPDX-License-Identifier: Apache-2.0
// From the call of ShowDialogProc until the dialog's window has been painted and is on screen. The first call, which
// loads fonts and images, is made before measuring. Needs a display: tests/dialogs/xserver/on-xserver gives one.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QPluginLoader>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"

namespace {

using Clock = std::chrono::steady_clock;

// Rejects each dialog once it is exposed and painted, and keeps the time when that was so.
class FirstPaint : public QObject {
 public:
  FirstPaint() { qApp->installEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    // An UpdateRequest paints and flushes the window: when the next event comes, it is on screen.
    auto* const dialog = qobject_cast<QDialog*>(watched);
    if (!dialog) return false;
    if (event->type() == QEvent::Paint) QCoreApplication::postEvent(dialog, new QEvent(QEvent::User));
    if (event->type() == QEvent::User) {
      painted = Clock::now();
      dialog->reject();
    }
    return false;
  }
  Clock::time_point painted;
};

CActionInterface* action = nullptr;

void ShowDialog(benchmark::State& state) {
  FirstPaint paint;
  QWidget window;
  window.setObjectName("VorlaneClass");
  QMap<QString, QVariant> settings{{"baseUrlString", "http://example.org/"}};
  DialogLoadStruct info{};
  info.settings = &settings;
  action->ShowDialogProc(&window, &info);
  double slowest = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto called = Clock::now();
    action->ShowDialogProc(&window, &info);
    const double seconds = std::chrono::duration<double>(paint.painted - called).count();
    state.SetIterationTime(seconds);
    slowest = std::max(slowest, seconds);
  }
  state.counters["slowest_ms"] = slowest * 1000;
}
BENCHMARK(ShowDialog)->UseManualTime()->Iterations(100)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QPluginLoader loader(QStringLiteral(SETBASEURL_FILE));
  action = qobject_cast<CActionInterface*>(loader.instance());
  if (!action) {
    std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
