// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
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
  constexpr int kPart = 32000;
  const QSize size(SaturatedInt(width), SaturatedInt(height));
  if (!icon) return;
  QImage image(size, QImage::Format_ARGB32);
  if (image.isNull()) return;
  image.fill(Qt::transparent);
  // A painter reaches the first 32767 pixels only, so a larger image is painted in parts.
  for (int y = 0; y < size.height(); y += kPart) {
    for (int x = 0; x < size.width(); x += kPart) {
      QImage part(image.scanLine(y) + qint64{4} * x, std::min(kPart, size.width() - x),
                  std::min(kPart, size.height() - y), image.bytesPerLine(), image.format());
      QPainter painter(&part);
      painter.setPen(QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
      painter.translate(-x, -y);
      painter.drawText(QRectF(QPointF(), image.size()), text, QTextOption());
    }
  }
  icon->addPixmap(QPixmap::fromImage(image).scaled(kIconSize, kIconSize, Qt::KeepAspectRatio, Qt::SmoothTransformation),
                  QIcon::Normal, QIcon::Off);
}
