// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionHistoryAPI.h"

#include <limits>
#include <memory>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSettings>

#include "utils/CActionUtils.h"
#include "utils/CErrorHandler.h"
#include "utils/FreshSettingsFile.h"

namespace {

const QLatin1String kPrefsKey("ActionPrefs");
const QLatin1String kIconKey("ActionIcon");
constexpr int kIconSize = 42;

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
    const QImage image = icon->pixmap(kIconSize, kIconSize, QIcon::Normal, QIcon::Off).toImage();
    WriteFreshSettingsFile(CActionUtils::GetCollectionsFolder() + QLatin1Char('/') + name + QLatin1String(".ini"),
                           {{kPrefsKey, *settings}, {kIconKey, image}});
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

  const QSettings entry(mEntries.at(mEntries.size() - 1 - mCursor).filePath(), QSettings::IniFormat);
  if (!entry.contains(kPrefsKey)) return nullptr;
  return std::make_unique<QMap<QString, QVariant>>(entry.value(kPrefsKey).toMap()).release();
}
