// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QWidget>

// Pointer and keys of the X server, moved by xdotool. The functions are for a thread other than that of the widgets,
// which runs its event loop meanwhile; they throw std::runtime_error.
class XUser {
 public:
  // Runs `script` in a thread of its own while the event loop runs; its errors fail the test.
  static void Run(const std::function<void(XUser&)>& script);

  // Waits until the condition, checked in the GUI thread, holds.
  static void Await(const std::string& what, const std::function<bool()>& condition);
  static void InGui(const std::function<void()>& function);
  static QString Do(const QStringList& xdotoolArguments);

  // Where the place in the window is on the screen. The X server knows; Qt is sometimes not informed of a new window's
  // place.
  static QPoint OnScreen(WId window, QPoint place);
  static void Move(QPoint to);
  void Click(QPoint at);
  static void Drag(QPoint from, QPoint to);
  static void Type(const QString& text);
  static void Press(const QString& key);
  int Clicks() const { return clicks_; }

 private:
  int clicks_ = 0;
};
