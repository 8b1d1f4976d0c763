// SPDX-License-Identifier: Apache-2.0
#include <QGraphicsTextItem>
#include <QPainter>
#include <QTextOption>

#include "utils/CActionUtils.h"
#include "utils/SaturatedInt.h"

double CActionUtils::GetTextItemHeight(const QFont& font, const QString& html, double width) {
  QGraphicsTextItem item;
  item.setHtml(html);
  item.setFont(font);
  item.setTextWidth(width);
  return item.boundingRect().height();
}

void CActionUtils::GenerateTextItemIcon(double width, double height, const QString& text, QIcon* icon) {
  constexpr int kIconSize = 128;
  constexpr int kGreatestSide = 32767;  // what Qt can paint on
  const QSize size(SaturatedInt(width), SaturatedInt(height));
  if (!icon || size.width() > kGreatestSide || size.height() > kGreatestSide) return;
  QImage image(size, QImage::Format_ARGB32);
  if (image.isNull()) return;
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setPen(QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
  painter.drawText(QRectF(0, 0, image.width(), image.height()), text, QTextOption());
  painter.end();
  icon->addPixmap(QPixmap::fromImage(image).scaled(kIconSize, kIconSize, Qt::KeepAspectRatio, Qt::SmoothTransformation),
                  QIcon::Normal, QIcon::Off);
}
