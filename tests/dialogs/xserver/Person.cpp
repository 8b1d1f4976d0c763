// SPDX-License-Identifier: Apache-2.0
#include "tests/dialogs/xserver/Person.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <QWindow>
#include <stdexcept>

namespace {

constexpr qint64 kPatienceMs = 20000;

template <typename F>
void inGuiThread(F&& function) {
  QMetaObject::invokeMethod(qApp, std::forward<F>(function), Qt::BlockingQueuedConnection);
}

QDialog* currentDialog() {
  return qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

bool until(const std::function<bool()>& condition) {
  QElapsedTimer waited;
  waited.start();
  while (!waited.hasExpired(kPatienceMs)) {
    bool holds = false;
    inGuiThread([&] { holds = condition(); });
    if (holds) return true;
    QThread::msleep(5);
  }
  return false;
}

[[noreturn]] void giveUp(const std::string& what) {
  throw std::runtime_error("waited in vain: " + what);
}

}  // namespace

void Person::Watch(const std::function<void(Person&)>& act, const std::function<void()>& work) {
  std::atomic<bool> workDone{false};
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    try {
      Person person;
      act(person);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
    // Whatever is still open now is not expected to end by itself.
    if (until([&] { return workDone.load(); })) return;
    ADD_FAILURE() << "a dialog stayed open";
    while (!workDone) {
      inGuiThread([] {
        if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
      });
    }
  }));
  thread->start();
  work();
  workDone = true;
  while (!thread->isFinished()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

void Person::AwaitDialog(const char* objectName) {
  const auto ready = [objectName] {
    const QDialog* dialog = currentDialog();
    return dialog && dialog->objectName() == QLatin1String(objectName) && dialog->windowHandle() &&
           dialog->windowHandle()->isExposed() && dialog->isActiveWindow();
  };
  if (!until(ready)) giveUp(std::string("dialog ") + objectName);
}

void Person::Await(const char* what, const std::function<bool(QDialog&)>& condition) {
  const auto holds = [&condition] {
    QDialog* dialog = currentDialog();
    return dialog && condition(*dialog);
  };
  if (!until(holds)) giveUp(what);
}

void Person::AwaitFrame(const char* what, const QRect& frame) {
  QString window;
  Look([&window](QDialog& dialog) { window = QString::number(dialog.winId()); });
  const QString expected = QStringLiteral("X=%1\nY=%2\nWIDTH=%3\nHEIGHT=%4\n")
                               .arg(frame.x())
                               .arg(frame.y())
                               .arg(frame.width())
                               .arg(frame.height());
  QElapsedTimer waited;
  waited.start();
  QString actual;
  while (!actual.contains(expected)) {
    if (waited.hasExpired(kPatienceMs)) {
      giveUp(what + std::string(", at last ") + actual.toStdString() + "instead of " + expected.toStdString());
    }
    QProcess xdotool;
    xdotool.start("xdotool", {"getwindowgeometry", "--shell", window});
    xdotool.waitForFinished();
    actual = xdotool.readAllStandardOutput();
  }
  // The program may still have reports of earlier steps to read.
  QThread::msleep(20);
  Await(what, [&frame](QDialog& dialog) { return dialog.frameGeometry() == frame; });
}

void Person::Look(const std::function<void(QDialog&)>& look) {
  QDialog* dialog = nullptr;
  inGuiThread([&] {
    dialog = currentDialog();
    if (dialog) look(*dialog);
  });
  if (!dialog) giveUp("a dialog to look at");
}

void Person::Do(const QStringList& arguments) {
  if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0) {
    giveUp("xdotool " + arguments.join(QLatin1Char(' ')).toStdString());
  }
}

void Person::PointTo(QPoint global) {
  Do({"mousemove", QString::number(global.x()), QString::number(global.y())});
}

void Person::Drag(QPoint from, QPoint to) {
  const auto awaitButton = [this](const char* what, Qt::MouseButtons buttons) {
    Await(what, [buttons](QDialog&) { return QApplication::mouseButtons() == buttons; });
  };
  PointTo(from);
  Do({"mousedown", "1"});
  awaitButton("the press", Qt::LeftButton);
  for (int step = 1; step <= 4; ++step) PointTo(from + (to - from) * step / 4);
  Do({"mouseup", "1"});
  awaitButton("the release", Qt::NoButton);
}

void Person::Click(const char* objectName) {
  QPoint place;
  Await(objectName, [&](QDialog& dialog) {
    const auto* widget = dialog.findChild<QWidget*>(QLatin1String(objectName));
    if (widget) place = widget->mapToGlobal(widget->rect().center());
    return widget && widget->isVisible();
  });
  PointTo(place);
  Do({"click", "1"});
}

void Person::Press(const QStringList& keys) {
  Do(QStringList{"key", "--delay", "20"} + keys);
}

void Person::Type(const QString& text) {
  Do({"type", "--delay", "5", text});
}
