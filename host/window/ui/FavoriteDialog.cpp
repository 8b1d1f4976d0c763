// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/FavoriteDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>

#include "host/window/ui/Messages.h"
#include "host/window/ui/SaveFooter.h"
#include "utils/CActionUtils.h"

namespace {

constexpr int kIconSize = 128;
const char* const kIconKey = "VorlaneActionsIcon";

QString ImageFilter() {
  QStringList patterns;
  for (const QByteArray& format : QImageReader::supportedImageFormats()) {
    patterns += QStringLiteral("*.") + QString::fromLatin1(format);
  }
  return patterns.join(QLatin1Char(' '));
}

}  // namespace

FavoriteDialog::FavoriteDialog(QWidget* parent, const Favorite& favorite) : QDialog(parent), icon_(favorite.icon) {
  setObjectName(QStringLiteral("favoriteDialog"));
  setWindowTitle(tr("Save as Favorite"));
  const int size = 2 * style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, this);
  iconButton_ = new QToolButton;
  iconButton_->setIcon(icon_);
  iconButton_->setIconSize(QSize(size, size));
  iconButton_->setToolTip(tr("Choose another picture"));
  iconButton_->setAccessibleName(iconButton_->toolTip());
  name_ = new QLineEdit(favorite.name);
  name_->setObjectName(QStringLiteral("favoriteName"));
  name_->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
  name_->selectAll();
  auto* const label = new QLabel(tr("&Name:"));
  label->setBuddy(name_);
  footer_ = new SaveFooter(*this);
  auto* const layout = new QGridLayout(this);
  layout->addWidget(iconButton_, 0, 0, 2, 1);
  layout->addWidget(label, 0, 1, Qt::AlignBottom);
  layout->addWidget(name_, 1, 1, Qt::AlignTop);
  layout->addWidget(footer_, 2, 0, 1, 2);
  layout->setColumnStretch(1, 1);
  name_->setFocus();
  connect(iconButton_, &QToolButton::clicked, this, &FavoriteDialog::ChooseIcon);
  connect(name_, &QLineEdit::textChanged, this, &FavoriteDialog::Check);
  connect(footer_, &SaveFooter::saveWanted, this, &QDialog::accept);
  Check();
}

void FavoriteDialog::ChooseIcon() {
  const QString key = QLatin1String(kIconKey);
  const QString file =
      QFileDialog::getOpenFileName(this, tr("Picture of the Favorite"), CActionUtils::GetLastVisitedLocation(key),
                                   tr("Pictures (%1)").arg(ImageFilter()));
  if (file.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, QFileInfo(file).path());
  const QPixmap picture(file);
  if (picture.isNull()) {
    return Messages::Warn(
        this, tr("%1 is not a picture that can be read. Choose another one.").arg(QFileInfo(file).fileName()));
  }
  icon_ = QIcon(picture.scaled(kIconSize, kIconSize, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  iconButton_->setIcon(icon_);
}

void FavoriteDialog::Check() {
  const QString why = Favorites::NameProblem(name_->text());
  const bool isTaken = why.isEmpty() && Favorites::Exists(name_->text());
  const QString message = isTaken ? tr("The favorite of this name will be replaced.") : why;
  footer_->Update(name_->text().isEmpty() ? QString() : message, why.isEmpty());
}

QString FavoriteDialog::Save(QWidget* parent, Favorite favorite, bool ask) {
  if (ask || Favorites::Exists(favorite.name) || !Favorites::NameProblem(favorite.name).isEmpty()) {
    FavoriteDialog dialog(parent, favorite);
    if (dialog.exec() != QDialog::Accepted) return {};
    favorite.name = dialog.name_->text();
    favorite.icon = dialog.icon_;
  }
  const QString problem = Favorites::Save(favorite);
  if (problem.isEmpty()) return favorite.name;
  Messages::Warn(parent, problem);
  return {};
}
