// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>

#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"

namespace {

const QLatin1String kActionName("ActionName");
const QLatin1String kActionListName("ActionListName");
const QLatin1String kActionListCategory("ActionListCategory");
const QLatin1String kActionListOverwrite("ActionListOverwrite");

void CreateList(const QString& path, QMap<QString, QVariant>* prefs) {
  const QString category = prefs->value(kActionListCategory).toString();
  QMap<QString, QVariant> settings = *prefs;
  for (const auto& key : {kActionName, kActionListOverwrite, kActionListCategory, kActionListName}) {
    settings.remove(key);
  }
  const bool replaces = QFile::exists(path);
  const bool written = ActionListFile::Create(path, prefs->value(kActionListName).toString(),
                                              category.isEmpty() ? QString("Favorites") : category,
                                              {prefs->value(kActionName).toString(), settings});
  if (written || !replaces) *prefs = settings;
}

}  // namespace

void CActionUtils::SaveAsCustomActionList(QMap<QString, QVariant>* prefs) {
  if (!prefs) return;
  const QString path = ActionListFile::PathOf(prefs->value(kActionListName, QString("Action")).toString());
  if (!prefs->value(kActionListOverwrite).toBool() && QFile::exists(path)) {
    ActionListFile::Append(path, {prefs->value(kActionName).toString(), *prefs});
  } else {
    CreateList(path, prefs);
  }
}

QStringList CActionUtils::GetActionListCategories() {
  QStringList categories{QString("Default"), QString("Favorites")};
  for (const QString& path : ActionListFile::All(QDir::Unsorted)) {
    const QString category = ActionListFile::Read(path).category;
    if (!category.isEmpty() && !categories.contains(category, Qt::CaseInsensitive)) categories.append(category);
  }
  return categories;
}
