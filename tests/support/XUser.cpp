// SPDX-License-Identifier: Apache-2.0
#include "tests/support/XUser.h"

#include <gtest/gtest.h>

#include <memory>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QThread>
#include <stdexcept>

namespace {

constexpr qint64 kPatienceMs = 60000;

}  // namespace

void XUser::Run(const std::function<void(XUser&)>& script) {
  QEventLoop loop;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    try {
      XUser user;
      script(user);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
      // Open dialogs would keep the test from ending.
      QMetaObject::invokeMethod(qApp, &QApplication::closeAllWindows, Qt::QueuedConnection);
    }
  }));
  QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
  thread->start();
  loop.exec();
  thread->wait();
}

void XUser::Await(const std::string& what, const std::function<bool()>& condition) {
  QElapsedTimer waited;
  for (waited.start(); !waited.hasExpired(kPatienceMs); QThread::msleep(5)) {
    bool holds = false;
    InGui([&] { holds = condition(); });
    if (holds) return;
  }
  QString active;
  InGui([&] {
    for (QWidget* widget : {QApplication::activeWindow(), QApplication::focusWidget()}) {
      if (widget) active += ' ' + QString::fromLatin1(widget->metaObject()->className()) + ' ' + widget->objectName();
    }
  });
  throw std::runtime_error("waited in vain: " + what + "; active:" + active.toStdString());
}

void XUser::InGui(const std::function<void()>& function) {
  QMetaObject::invokeMethod(qApp, function, Qt::BlockingQueuedConnection);
}

QString XUser::Do(const QStringList& xdotoolArguments) {
  QProcess xdotool;
  xdotool.start(QStringLiteral("xdotool"), xdotoolArguments);
  if (!xdotool.waitForFinished() || xdotool.exitCode() != 0) {
    throw std::runtime_error("xdotool failed: " + xdotoolArguments.join(QLatin1Char(' ')).toStdString());
  }
  return QString::fromUtf8(xdotool.readAllStandardOutput());
}

QPoint XUser::OnScreen(WId window, QPoint place) {
  Do({"mousemove", "--window", QString::number(window), QString::number(place.x()), QString::number(place.y())});
  const QStringList found = Do({"getmouselocation", "--shell"}).split('\n');
  return {found[0].mid(2).toInt(), found[1].mid(2).toInt()};
}

void XUser::Move(QPoint to) {
  Do({"mousemove", QString::number(to.x()), QString::number(to.y())});
}

void XUser::Click(QPoint at) {
  Move(at);
  Do({"click", "1"});
  ++clicks_;
}

void XUser::Drag(QPoint from, QPoint to) {
  Move(from);
  Do({"mousedown", "1"});
  Await("the press", [] { return QApplication::mouseButtons() == Qt::LeftButton; });
  for (int step = 1; step <= 4; ++step) Move(from + (to - from) * step / 4);
  Do({"mouseup", "1"});
  Await("the release", [] { return QApplication::mouseButtons() == Qt::NoButton; });
}

void XUser::Type(const QString& text) {
  Do({"type", "--delay", "10", text});
}

void XUser::Press(const QString& key) {
  Do({"key", key});
}
