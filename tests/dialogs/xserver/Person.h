// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <QDialog>
#include <QPoint>
#include <QStringList>

// Somebody in front of the screen: moves the real pointer and presses the real keys, and waits for what becomes of it.
// Lives in a thread of its own, so that any dialog may run its event loop meanwhile.
class Person {
 public:
  // Runs `work` in the program's GUI thread while the person acts. When the person gives up, the test fails and every
  // dialog is closed, so that `work` returns.
  static void Watch(const std::function<void(Person&)>& act, const std::function<void()>& work);

  // Waits until the modal dialog of that name is on screen and has the keyboard.
  void AwaitDialog(const char* objectName);
  // Waits until the condition, asked in the GUI thread with the current modal dialog, holds.
  void Await(const char* what, const std::function<bool(QDialog&)>& condition);
  // Waits until the window's outer frame is there, for the X server as for the program.
  void AwaitFrame(const char* what, const QRect& frame);
  // Asks the GUI thread once.
  void Look(const std::function<void(QDialog&)>& look);

  void PointTo(QPoint global);
  // Each step is a pointer motion of its own.
  void Drag(QPoint from, QPoint to);
  void Click(const char* objectName);
  void Press(const QStringList& keys);
  void Type(const QString& text);

 private:
  void Do(const QStringList& arguments);
};
