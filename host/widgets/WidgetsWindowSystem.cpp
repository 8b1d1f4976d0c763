// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QScreen>
#include <QTextDocument>
#include <QWidget>

#include "host/base/WindowSystem.h"
#include "plugin/CActionInterface.h"

namespace {

class WidgetsWindowSystem : public WindowSystem {
 public:
  std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv) override {
    return std::make_unique<QApplication>(argc, argv);
  }

  int ShowDialog(CActionInterface& action, const QString& parentName, DialogLoadStruct& info) override {
    if (parentName.isEmpty()) return action.ShowDialogProc(nullptr, &info);
    // Never shown: dialogs only ask for its name and position.
    QWidget parent;
    parent.setObjectName(parentName);
    parent.setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
    return action.ShowDialogProc(&parent, &info);
  }

  QString PlainText(const QString& html) override {
    QTextDocument page;
    page.setHtml(html);
    return page.toPlainText();
  }
};

}  // namespace

WindowSystem* VorlaneRunWidgets() {
  static WidgetsWindowSystem system;
  return &system;
}
