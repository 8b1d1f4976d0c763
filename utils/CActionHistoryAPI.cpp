// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionHistoryAPI.h"

#include <limits>
#include <memory>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include "utils/CActionUtils.h"
#include "utils/CErrorHandler.h"
#include "utils/SettingsFile.h"

namespace {

const QLatin1String kPrefsKey("ActionPrefs");
const QLatin1String kIconKey("ActionIcon");
constexpr int kIconSize = 42;

// The icon's normal image at one pixel for each logical pixel, on screens of every density; a smaller one is centred.
QImage RenderIcon(const QIcon& icon) {
  const QPixmap pixmap = icon.pixmap(kIconSize, kIconSize, QIcon::Normal, QIcon::Off);
  QImage image(kIconSize, kIconSize, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (pixmap.isNull()) return image;
  QRectF place(QPointF(), QSizeF(pixmap.size()) / pixmap.devicePixelRatioF());
  place.moveCenter({kIconSize / 2.0, kIconSize / 2.0});
  QPainter painter(&image);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(place, pixmap, pixmap.rect());
  return image;
}

}  // namespace

CActionHistoryAPI::CActionHistoryAPI(QString prefix)
    : mPrefix(std::move(prefix)), mFolder(CActionUtils::GetCollectionsFolder()) {
  mFolder.setNameFilters({mPrefix + QLatin1Char('*')});
  mEntries = mFolder.entryInfoList(QDir::Files, QDir::Time | QDir::Reversed);
}

CActionHistoryAPI::~CActionHistoryAPI() = default;

int CActionHistoryAPI::SaveSettingsToHistory(QMap<QString, QVariant>* settings, QIcon* icon) {
  if (!settings || !icon) return 1;
  try {
    const QString name = settings->value(QString("CollectionName")).toString();
    const QString path = CActionUtils::GetCollectionsFolder() + QLatin1Char('/') + name + QLatin1String(".ini");
    const QImage image = RenderIcon(*icon);
    SettingsFile::Replace(path, [&](QSettings& file) {
      file.setValue(kPrefsKey, *settings);
      file.setValue(kIconKey, image);
    });
    return 0;
  } catch (...) {
    const QString record = QString::asprintf(
        "==============================\nException handled: system\nFile: %s\nFunction: %s\nLine: %d\n",
        "CActionHistoryAPI", "SaveSettingsToHistory", 53);
    StoreErrorToLog(record.toUtf8().constData());
    return 1;
  }
}

QMap<QString, QVariant>* CActionHistoryAPI::LoadSettingsFromHistory(int step) {
  const qint64 moved = qint64{mCursor} + step;
  mCursor = static_cast<int>(qBound<qint64>(std::numeric_limits<int>::min(), moved, std::numeric_limits<int>::max()));
  if (mCursor < 0 || mCursor >= mEntries.size()) return nullptr;

  const SettingsFile entry(mEntries.at(mEntries.size() - 1 - mCursor).filePath());
  if (!entry.Values().contains(kPrefsKey)) return nullptr;
  return std::make_unique<QMap<QString, QVariant>>(entry.Values().value(kPrefsKey).toMap()).release();
}
