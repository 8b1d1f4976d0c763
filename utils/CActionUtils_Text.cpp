// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
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
  constexpr double kMostPixels = 1 << 26;  // 256 MiB
  const QSize size(SaturatedInt(width), SaturatedInt(height));
  if (!icon || size.isEmpty()) return;
  // A larger image is painted at a smaller scale: the icon is small in any case.
  const double scale = std::min(1.0, std::sqrt(kMostPixels / size.width() / size.height()));
  const QSize painted(static_cast<int>(size.width() * scale), static_cast<int>(size.height() * scale));
  QImage image(painted, QImage::Format_ARGB32);
  if (image.isNull()) return;
  image.fill(Qt::transparent);
  // A painter reaches only the first 32767 pixels of a side, so a larger image is painted in parts.
  for (int y = 0; y < painted.height(); y += kPart) {
    for (int x = 0; x < painted.width(); x += kPart) {
      QImage part(image.scanLine(y) + qint64{4} * x, std::min(kPart, painted.width() - x),
                  std::min(kPart, painted.height() - y), image.bytesPerLine(), image.format());
      QPainter painter(&part);
      painter.setPen(QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
      painter.translate(-x, -y);
      painter.scale(scale, scale);
      painter.drawText(QRectF(QPointF(), size), text, QTextOption());
    }
  }
  const QSize shown = size.scaled(kIconSize, kIconSize, Qt::KeepAspectRatio);
  icon->addPixmap(QPixmap::fromImage(image).scaled(shown, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                  QIcon::Normal, QIcon::Off);
}
