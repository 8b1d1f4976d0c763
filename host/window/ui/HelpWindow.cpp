// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/HelpWindow.h"

#include <QLabel>
#include <QPointer>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "host/window/ui/SettingsText.h"
#include "plugin/CActionInterface.h"
#include "utils/CActionUtils.h"

namespace {

QPointer<HelpWindow> openWindow;

}  // namespace

HelpWindow::HelpWindow(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("helpWindow"));
  setAttribute(Qt::WA_DeleteOnClose);
  section_ = new QLabel;
  page_ = new QTextBrowser;
  page_->setObjectName(QStringLiteral("helpPage"));
  page_->setOpenExternalLinks(true);
  page_->document()->setDocumentMargin(fontMetrics().height());
  section_->hide();
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(section_);
  layout->addWidget(page_);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 40);
  CActionUtils::SetTargetLabels(section_, page_);
}

HelpWindow::~HelpWindow() {
  CActionUtils::SetTargetLabels(nullptr, nullptr);
}

void HelpWindow::ShowPage(QWidget* parent, CActionInterface& action) {
  // One that is being closed may still be there: its widgets are not to be those of the new one.
  if (openWindow != nullptr && !openWindow->isVisible()) delete openWindow;
  if (openWindow == nullptr) openWindow = new HelpWindow(parent);
  openWindow->setWindowTitle(tr("Help: %1").arg(ActionText(action.GetDisplayName())));
  CActionUtils::SetCurrentSection(action.GetDisplayName());
  CActionUtils::SetHelp(action.GetActionHelp());
  if (openWindow->page_->toPlainText().isEmpty()) {
    CActionUtils::SetHelpHtml(
        tr("<p>The action \"%1\" has no help page.</p>").arg(ActionText(action.GetDisplayName()).toHtmlEscaped()));
  }
  openWindow->show();
  openWindow->raise();
  openWindow->activateWindow();
}
