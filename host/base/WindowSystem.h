// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <QCoreApplication>
#include <QString>

class CActionInterface;
struct DialogLoadStruct;

// Everything that needs Qt Gui and Widgets. It is in a module of its own, because most runs do not need it and loading
// it takes longer than such a run.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  // Loads the module, which stays loaded. Throws CommandError(kExitNotLoaded).
  static WindowSystem& Get();

  // A QApplication; it keeps references to the arguments. Qt ends the program when the display cannot be reached.
  virtual std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv) = 0;
  // Opens the action's settings dialog, whose parent is a window of that object name; an empty one: without a parent.
  // Returns what the action returns.
  virtual int ShowDialog(CActionInterface& action, const QString& parentName, DialogLoadStruct& info) = 0;
  // The text of an HTML page.
  virtual QString PlainText(const QString& html) = 0;

 protected:
  WindowSystem() = default;
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;
};

// The module's entry point.
extern "C" Q_DECL_EXPORT WindowSystem* VorlaneRunWidgets();
