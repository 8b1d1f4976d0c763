// SPDX-License-Identifier: Apache-2.0
// The pointer on a real X server with a window manager. The guide's test has the keyboard and the buttons.
#include <gtest/gtest.h>

#include <QApplication>
#include <QThread>
#include <QWindow>

#include "dialogs/CVorlaneDialog.h"
#include "tests/support/XUser.h"
#include "utils/CUtils.h"

namespace {

void AwaitFrame(QDialog& dialog, const std::string& what, const QRect& frame) {
  // The server's geometry first: the program may still have events of earlier steps to read.
  const QString expected = QStringLiteral("X=%1\nY=%2\nWIDTH=%3\nHEIGHT=%4\n")
                               .arg(frame.x())
                               .arg(frame.y())
                               .arg(frame.width())
                               .arg(frame.height());
  QString id;
  XUser::InGui([&] { id = QString::number(dialog.winId()); });
  XUser::Await(what, [&] { return XUser::Do({"getwindowgeometry", "--shell", id}).contains(expected); });
  QThread::msleep(20);
  XUser::Await(what, [&] { return dialog.frameGeometry() == frame; });
}

class ResizableDialog : public CVorlaneDialog {
 public:
  ResizableDialog() : CVorlaneDialog(nullptr, false) {
    auto* form = new QWidget(this);
    form->resize(400, 300);
    VDaddMainWidget(form, false);
  }
};

void dragEverywhere(XUser& pointer, QDialog& dialog) {
  QRect start;
  pointer.Await("the dialog", [&] {
    start = dialog.frameGeometry();
    return dialog.isActiveWindow() && dialog.windowHandle()->isExposed();
  });
  const QPoint header(start.left() + 60, start.top() + 20);
  pointer.Drag(header, header + QPoint(120, -90));
  start.translate(120, -90);
  AwaitFrame(dialog, "the dialog to follow the pointer", start);
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
    AwaitFrame(dialog, zone.name, grown);
    pointer.Drag(zone.grip + out, zone.grip);
    AwaitFrame(dialog, zone.name, start);
    pointer.Drag(zone.grip, zone.grip - out);  // below the minimum
    pointer.Move(start.center());
    AwaitFrame(dialog, zone.name, start);
  }
}

TEST(XServer, TheHeaderMovesAndTheEdgesResizeDownToTheMinimum) {
  ASSERT_TRUE(CUtils::CheckOpenGLSupport()) << "the X server has no OpenGL";
  ResizableDialog dialog;
  dialog.open();
  XUser::Run([&](XUser& pointer) { dragEverywhere(pointer, dialog); });
}

}  // namespace
