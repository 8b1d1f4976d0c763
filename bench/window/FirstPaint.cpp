// SPDX-License-Identifier: Apache-2.0
// Linked into a program with a window: prints the milliseconds from the program's start to its first painted window,
// and ends it. Who starts the program puts the start, as CLOCK_MONOTONIC in seconds, into the environment's STARTED_AT.
#include <cstdio>
#include <ctime>
#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

namespace {

double Now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

class FirstPaint : public QObject {
 public:
  using QObject::QObject;

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (!painted_ && event->type() == QEvent::Paint && widget && widget->isWindow()) {
      painted_ = true;
      // Its children are painted, and the result is sent to the screen, before the event loop comes to this.
      QTimer::singleShot(0, this, [] {
        std::printf("%.1f\n", (Now() - qgetenv("STARTED_AT").toDouble()) * 1000);
        std::fflush(stdout);
        QCoreApplication::exit();
      });
    }
    return false;
  }

  bool painted_ = false;
};

void Watch() {
  QCoreApplication::instance()->installEventFilter(new FirstPaint(QCoreApplication::instance()));
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(Watch)
