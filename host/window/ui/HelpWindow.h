// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

class CActionInterface;
class QLabel;
class QTextBrowser;

// Shows the help pages of actions. At most one window exists at a time: the pages are shown through widgets that all
// of the program shares.
class HelpWindow : public QDialog {
  Q_OBJECT

 public:
  // Shows the action's page, in the window that is open or in a new one over `parent`, which is not modal and deletes
  // itself when it is closed.
  static void ShowPage(QWidget* parent, CActionInterface& action);
  ~HelpWindow() override;

 private:
  explicit HelpWindow(QWidget* parent);

  QLabel* section_;
  QTextBrowser* page_;
};
