// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "utils/CActionUtils.h"
#include "utils/CUtils.h"
#include "utils/FreshSettingsFile.h"
#include "utils/SettingsValues.h"

namespace {

const QLatin1String kActionName("ActionName");
const QLatin1String kActionListName("ActionListName");
const QLatin1String kActionListCategory("ActionListCategory");
const QLatin1String kActionListOverwrite("ActionListOverwrite");
const QLatin1String kSequenceCategory("SequenceCategory");

QString NameKey(int number) {
  return QString("ActionName%1").arg(number);
}
QString PrefsKey(int number) {
  return QString("ActionPrefs%1").arg(number);
}

void AppendAction(const QString& path, const QMap<QString, QVariant>& prefs) {
  QSettings list(path, QSettings::IniFormat);
  list.allKeys();  // has every section parsed, which opening the file does not
  // Writing to a list that could not be read whole would drop the rest of it.
  if (list.status() != QSettings::NoError) return;
  int number = 0;
  while (list.contains(NameKey(number))) ++number;
  WriteSettingsValues(list, {{NameKey(number), prefs.value(kActionName).toString()}, {PrefsKey(number), prefs}});
}

void CreateList(const QString& path, QMap<QString, QVariant>* prefs) {
  const QString category = prefs->value(kActionListCategory).toString();
  QMap<QString, QVariant> actionPrefs = *prefs;
  for (const auto& key : {kActionName, kActionListOverwrite, kActionListCategory, kActionListName}) {
    actionPrefs.remove(key);
  }
  const bool replaces = QFile::exists(path);
  const bool written =
      WriteFreshSettingsFile(path, {{QString("SequenceName"), prefs->value(kActionListName).toString()},
                                    {kSequenceCategory, category.isEmpty() ? QString("Favorites") : category},
                                    {QString("IOSettings"), 0},
                                    {NameKey(0), prefs->value(kActionName).toString()},
                                    {PrefsKey(0), actionPrefs}});
  if (written || !replaces) *prefs = actionPrefs;
}

}  // namespace

void CActionUtils::SaveAsCustomActionList(QMap<QString, QVariant>* prefs) {
  if (!prefs) return;
  QString name = prefs->value(kActionListName, QString("Action")).toString();
  name.replace(QLatin1Char(' '), QLatin1Char('_'));
  const QString path = CUtils::GetSequenceFolder() + QLatin1Char('/') + name + QLatin1String(".xqq");
  if (!prefs->value(kActionListOverwrite).toBool() && QFile::exists(path)) {
    AppendAction(path, *prefs);
  } else {
    CreateList(path, prefs);
  }
}

QStringList CActionUtils::GetActionListCategories() {
  QStringList categories{QString("Default"), QString("Favorites")};
  const QString folder = CUtils::GetSequenceFolder();
  const QStringList files = QDir(folder).entryList({QString("*.xqq")}, QDir::NoFilter, QDir::Unsorted);
  for (const QString& file : files) {
    const QString path = folder + QLatin1Char('/') + file;
    if (!QFileInfo(path).isFile()) continue;  // opening a named pipe would wait for a writer
    const QString category = QSettings(path, QSettings::IniFormat).value(kSequenceCategory, QString()).toString();
    if (!category.isEmpty() && !categories.contains(category, Qt::CaseInsensitive)) categories.append(category);
  }
  return categories;
}
