// SPDX-License-Identifier: Apache-2.0
// The pointer on a real X server with a window manager. The guide's test has the keyboard and the buttons.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <QWindow>
#include <stdexcept>

#include "dialogs/CVorlaneDialog.h"
#include "utils/CUtils.h"

namespace {

constexpr qint64 kPatienceMs = 20000;

// Moves the pointer over a dialog from a thread of its own, so that the dialog runs its event loop meanwhile.
class Pointer {
 public:
  explicit Pointer(QDialog& dialog) : dialog_(dialog) {}

  // Waits until the condition, checked in the GUI thread, holds.
  void Await(const std::string& what, const std::function<bool()>& condition) {
    QElapsedTimer waited;
    for (waited.start(); !waited.hasExpired(kPatienceMs); QThread::msleep(5)) {
      bool holds = false;
      QMetaObject::invokeMethod(
          qApp, [&] { holds = condition(); }, Qt::BlockingQueuedConnection);
      if (holds) return;
    }
    throw std::runtime_error("waited in vain: " + what);
  }
  void AwaitFrame(const std::string& what, const QRect& frame) {
    // The server's answer first: the program may still have reports of earlier steps to read.
    const QString expected = QStringLiteral("X=%1\nY=%2\nWIDTH=%3\nHEIGHT=%4\n")
                                 .arg(frame.x())
                                 .arg(frame.y())
                                 .arg(frame.width())
                                 .arg(frame.height());
    QString id;
    Await(what, [&] {
      id = QString::number(dialog_.winId());
      return true;
    });
    QElapsedTimer waited;
    for (waited.start(); !Do({"getwindowgeometry", "--shell", id}).contains(expected);) {
      if (waited.hasExpired(kPatienceMs)) throw std::runtime_error("waited in vain: " + what);
    }
    QThread::msleep(20);
    Await(what, [&] { return dialog_.frameGeometry() == frame; });
  }
  void Move(QPoint to) { Do({"mousemove", QString::number(to.x()), QString::number(to.y())}); }
  void Drag(QPoint from, QPoint to) {
    Move(from);
    Do({"mousedown", "1"});
    Await("the press", [] { return QApplication::mouseButtons() == Qt::LeftButton; });
    for (int step = 1; step <= 4; ++step) Move(from + (to - from) * step / 4);
    Do({"mouseup", "1"});
    Await("the release", [] { return QApplication::mouseButtons() == Qt::NoButton; });
  }

 private:
  static QString Do(const QStringList& arguments) {
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"), arguments);
    if (!xdotool.waitForFinished() || xdotool.exitCode() != 0) throw std::runtime_error("xdotool failed");
    return QString::fromUtf8(xdotool.readAllStandardOutput());
  }

  QDialog& dialog_;
};

class ResizableDialog : public CVorlaneDialog {
 public:
  ResizableDialog() : CVorlaneDialog(nullptr, false) {
    auto* form = new QWidget(this);
    form->resize(400, 300);
    VDaddMainWidget(form, false);
  }
};

void dragEverywhere(Pointer& pointer, QDialog& dialog) {
  QRect start;
  pointer.Await("the dialog", [&] {
    start = dialog.frameGeometry();
    return dialog.isActiveWindow() && dialog.windowHandle()->isExposed();
  });
  const QPoint header(start.left() + 60, start.top() + 20);
  pointer.Drag(header, header + QPoint(120, -90));
  start.translate(120, -90);
  pointer.AwaitFrame("the dialog to follow the pointer", start);
  struct Zone {
    const char* name;
    QPoint grip;
    QPoint outwards;
    Qt::CursorShape cursor;
  };
  for (const Zone& zone : {Zone{"left", {start.left(), start.center().y()}, {-1, 0}, Qt::SizeHorCursor},
                           Zone{"top right", start.topRight(), {1, -1}, Qt::SizeBDiagCursor},
                           Zone{"bottom right", start.bottomRight(), {1, 1}, Qt::SizeFDiagCursor}}) {
    pointer.Move(zone.grip);
    pointer.Await(zone.name, [&] { return dialog.cursor().shape() == zone.cursor; });
    const QPoint out = zone.outwards * 40;
    const QRect grown = start.adjusted(qMin(out.x(), 0), qMin(out.y(), 0), qMax(out.x(), 0), qMax(out.y(), 0));
    pointer.Drag(zone.grip, zone.grip + out);
    pointer.AwaitFrame(zone.name, grown);
    pointer.Drag(zone.grip + out, zone.grip);
    pointer.AwaitFrame(zone.name, start);
    pointer.Drag(zone.grip, zone.grip - out);  // below the minimum
    pointer.Move(start.center());
    pointer.AwaitFrame(zone.name, start);
  }
}

TEST(XServer, TheHeaderMovesAndTheEdgesResizeDownToTheMinimum) {
  ASSERT_TRUE(CUtils::CheckOpenGLSupport()) << "the X server has no OpenGL";
  ResizableDialog dialog;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    try {
      Pointer pointer(dialog);
      dragEverywhere(pointer, dialog);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
    QMetaObject::invokeMethod(&dialog, "reject", Qt::QueuedConnection);
  }));
  thread->start();
  dialog.exec();
  thread->wait();
}

}  // namespace
