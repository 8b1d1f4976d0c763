// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/ChoiceCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kMostLines = 6;

// A long address may be broken anywhere.
QString Breakable(const QString& text) {
  QString result;
  for (const QChar each : text) {
    result += each;
    if (each == QLatin1Char('/') || each == QLatin1Char('.') || each == QLatin1Char('_')) result += QChar(0x200b);
  }
  return result;
}

QString FirstLines(const QString& text) {
  const QStringList lines = text.split(QLatin1Char('\n'));
  return lines.mid(0, kMostLines).join(QLatin1Char('\n')) +
         (lines.size() > kMostLines ? QStringLiteral("\n…") : QString());
}

}  // namespace

ChoiceCard::ChoiceCard(QWidget* parent) : QFrame(parent) {
  setFrameShape(QFrame::StyledPanel);
  setAccessibleName(tr("What will be done"));
  icon_ = new QLabel;
  title_ = new QLabel;
  title_->setWordWrap(true);
  QFont bold = font();
  bold.setBold(true);
  title_->setFont(bold);
  details_ = new QLabel;
  details_->setObjectName(QStringLiteral("choiceDetails"));
  details_->setWordWrap(true);
  details_->setTextFormat(Qt::PlainText);
  details_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  title_->setTextFormat(Qt::PlainText);

  edit_ = new QPushButton;
  edit_->setObjectName(QStringLiteral("editSettings"));
  favorite_ = new QToolButton;
  favorite_->setText(tr("Favorite"));
  favorite_->setIcon(QIcon(QStringLiteral(":/Vorlane/Resources/Collection.png")));
  favorite_->setToolTip(tr("Save these settings as a favorite"));
  favorite_->setAccessibleName(favorite_->toolTip());
  favorite_->setAutoRaise(true);
  help_ = new QToolButton;
  help_->setText(QStringLiteral("?"));
  help_->setFont(bold);
  help_->setToolTip(tr("What this action does"));
  help_->setAccessibleName(help_->toolTip());
  help_->setAutoRaise(true);

  auto* head = new QHBoxLayout;
  head->addWidget(icon_);
  head->addWidget(title_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(edit_);
  buttons->addStretch(1);
  buttons->addWidget(favorite_);
  buttons->addWidget(help_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(head);
  layout->addWidget(details_);
  layout->addLayout(buttons);

  connect(edit_, &QPushButton::clicked, this, &ChoiceCard::editWanted);
  connect(favorite_, &QToolButton::clicked, this, &ChoiceCard::favoriteWanted);
  connect(help_, &QToolButton::clicked, this, &ChoiceCard::helpWanted);
  SetChoice({});
}

void ChoiceCard::SetChoice(const Choice& choice) {
  const int size = style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, this);
  icon_->setPixmap(choice.icon.pixmap(window()->windowHandle(), QSize(size, size)));
  icon_->setVisible(choice.IsSet());
  title_->setText(choice.IsSet() ? choice.title : tr("Nothing chosen yet"));
  details_->setText(choice.IsSet() ? Breakable(FirstLines(choice.details))
                                   : tr("Choose above what is to be done with the files."));
  details_->setToolTip(choice.details);
  details_->setVisible(!details_->text().isEmpty());
  edit_->setText(choice.IsList() ? tr("Edit Li&st…") : tr("Edit &Settings…"));
  edit_->setVisible(choice.IsEditable() || choice.IsList());
  favorite_->setVisible(choice.IsEditable());
  help_->setVisible(choice.IsEditable());
}
