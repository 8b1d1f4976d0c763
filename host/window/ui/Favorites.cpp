// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/Favorites.h"

#include <algorithm>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPixmap>

#include "host/actions/StoredSettings.h"
#include "utils/CActionHistoryAPI.h"
#include "utils/CActionUtils.h"
#include "utils/SettingsFile.h"

namespace {

constexpr int kLongestName = 200;  // bytes; the file's name is longer by ".ini"

QString PathOf(const QString& name) {
  return CActionUtils::GetCollectionsFolder() + QLatin1Char('/') + name + QStringLiteral(".ini");
}

Favorite Read(const QFileInfo& file) {
  const SettingsFile stored(file.filePath());
  Favorite favorite;
  favorite.file = file.filePath();
  favorite.name = file.completeBaseName();
  favorite.settings = stored.Values().value(QStringLiteral("ActionPrefs")).toMap();
  favorite.actionName = favorite.settings.value(QStringLiteral("ActionName")).toString();
  for (const QString& key : StoredSettings::KeysOfDialogs()) favorite.settings.remove(key);
  favorite.icon = QIcon(QPixmap::fromImage(stored.Values().value(QStringLiteral("ActionIcon")).value<QImage>()));
  return favorite;
}

}  // namespace

QVector<Favorite> Favorites::All() {
  QVector<Favorite> favorites;
  const QDir folder(CActionUtils::GetCollectionsFolder());
  for (const QFileInfo& file : folder.entryInfoList({QStringLiteral("*.ini")}, QDir::Files)) {
    const Favorite favorite = Read(file);
    if (!favorite.actionName.isEmpty()) favorites += favorite;
  }
  std::sort(favorites.begin(), favorites.end(), [](const Favorite& one, const Favorite& other) {
    return QString::localeAwareCompare(one.name, other.name) < 0;
  });
  return favorites;
}

QString Favorites::NameProblem(const QString& name) {
  QString allowed = name;
  CActionUtils::FixStringForFilename(&allowed);
  if (name.trimmed().isEmpty()) return tr("Enter a name.");
  if (allowed != name) return tr("A name cannot begin or end with a space or contain any of < > : \" / \\ | ? *");
  if (name.startsWith(QLatin1Char('.'))) return tr("A name cannot begin with a dot.");
  if (name.toUtf8().size() > kLongestName) return tr("The name is too long.");
  return {};
}

bool Favorites::Exists(const QString& name) {
  return QFile::exists(PathOf(name));
}

QString Favorites::Save(const Favorite& favorite) {
  const QString problem = NameProblem(favorite.name);
  if (!problem.isEmpty()) return problem;
  QMap<QString, QVariant> settings = favorite.settings;
  settings.insert(QStringLiteral("ActionName"), favorite.actionName);
  settings.insert(QStringLiteral("CollectionName"), favorite.name);
  QIcon icon = favorite.icon;
  CActionHistoryAPI(QString()).SaveSettingsToHistory(&settings, &icon);
  // The settings history reports no failure; what can be read back was written.
  const SettingsFile stored(PathOf(favorite.name));
  if (stored.Values().value(QStringLiteral("ActionPrefs")).toMap() == settings) return {};
  return tr("The favorite \"%1\" could not be written to %2. Check that the folder can be written and that the disk is "
            "not full.")
      .arg(favorite.name, QDir::toNativeSeparators(CActionUtils::GetCollectionsFolder()));
}

QString Favorites::Rename(const Favorite& favorite, const QString& name) {
  if (name == favorite.name) return {};
  Favorite renamed = favorite;
  renamed.name = name;
  const QString problem = Save(renamed);
  return problem.isEmpty() ? Remove(favorite) : problem;
}

QString Favorites::Remove(const Favorite& favorite) {
  if (QFile::remove(favorite.file) || !QFile::exists(favorite.file)) return {};
  return tr("The favorite \"%1\" could not be removed: %2 cannot be written.")
      .arg(favorite.name, QFileInfo(favorite.file).path());
}
