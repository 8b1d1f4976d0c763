// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/NoticeBar.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace {

constexpr int kMost = 1000;

}  // namespace

NoticeBar::NoticeBar(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("notice"));
  setFrameShape(QFrame::StyledPanel);
  setBackgroundRole(QPalette::ToolTipBase);
  setAutoFillBackground(true);
  const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  icon_ = new QLabel;
  icon_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size, size));
  text_ = new QLabel;
  text_->setObjectName(QStringLiteral("noticeText"));
  text_->setForegroundRole(QPalette::ToolTipText);
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  all_ = new QPushButton;
  auto* const close = new QToolButton;
  close->setText(QStringLiteral("✕"));  // the icon of the style cannot be seen on dark ground
  close->setAutoRaise(true);
  close->setToolTip(tr("Close this message"));
  close->setAccessibleName(close->toolTip());
  auto* const layout = new QHBoxLayout(this);
  const int margin = style()->pixelMetric(QStyle::PM_LayoutTopMargin, nullptr, this) / 2;
  layout->setContentsMargins(margin * 2, margin, margin, margin);
  layout->addWidget(icon_);
  layout->addWidget(text_, 1);
  layout->addWidget(all_);
  layout->addWidget(close);
  connect(all_, &QPushButton::clicked, this, &NoticeBar::ShowAll);
  connect(close, &QToolButton::clicked, this, &NoticeBar::Clear);
  Clear();
}

void NoticeBar::Add(const QString& message) {
  if (known_.contains(message)) return;
  if (messages_.size() < kMost) {
    messages_ += message;
    known_ += message;
  } else {
    ++leftOut_;
  }
  const int more = static_cast<int>(messages_.size()) - 1 + leftOut_;
  text_->setText(messages_[0]);
  all_->setText(tr("%n More…", nullptr, more));
  all_->setVisible(more > 0);
  show();
}

void NoticeBar::Clear() {
  messages_.clear();
  known_.clear();
  leftOut_ = 0;
  hide();
}

void NoticeBar::ShowAll() {
  QDialog dialog(window());
  dialog.setWindowTitle(tr("Messages"));
  QString text = messages_.join(QLatin1Char('\n'));
  if (leftOut_ > 0) text += QLatin1Char('\n') + tr("and %n more", nullptr, leftOut_);
  auto* const all = new QPlainTextEdit(text);
  all->setReadOnly(true);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  auto* const layout = new QVBoxLayout(&dialog);
  layout->addWidget(all);
  layout->addWidget(buttons);
  dialog.resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 20);
  dialog.exec();
}
