// SPDX-License-Identifier: Apache-2.0
#include "utils/ActionListFile.h"

#include <algorithm>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "utils/CUtils.h"
#include "utils/SettingsFile.h"

namespace {

const QLatin1String kName("SequenceName");
const QLatin1String kCategory("SequenceCategory");
const QLatin1String kActionName("ActionName");
const QLatin1String kActionSettings("ActionPrefs");
const QLatin1String kSuffix(".xqq");

QString Key(QLatin1String key, int number) {
  return key + QString::number(number);
}

void SetEntry(QSettings& file, int number, const ActionListFile::Entry& entry) {
  file.setValue(Key(kActionName, number), entry.actionName);
  file.setValue(Key(kActionSettings, number), entry.settings);
}

// Whether the file has the line of a map that was stored empty. A damaged map reads as an empty one too.
bool StoresEmptyMap(const QString& text, int number) {
  const QRegularExpression line(
      QString(R"~(^\s*%1\s*=\s*"?@Variant\(\\0\\0\\0\\b\\0\\0\\0\\0\)"?\s*$)~").arg(Key(kActionSettings, number)),
      QRegularExpression::MultilineOption);
  return text.contains(line);
}

bool IsDamaged(const QVariant& settings, const QString& text, int number) {
  if (!settings.isValid()) return false;
  if (settings.userType() != QMetaType::QVariantMap) return true;
  return settings.toMap().isEmpty() && !StoresEmptyMap(text, number);
}

bool IsActionNameAfter(const QString& key, int number) {
  bool isNumber = false;
  return key.startsWith(kActionName) && key.midRef(kActionName.size()).toInt(&isNumber) > number && isNumber;
}

}  // namespace

QString ActionListFile::PathOf(const QString& name) {
  return CUtils::GetSequenceFolder() + QLatin1Char('/') + QString(name).replace(u' ', u'_') + kSuffix;
}

QStringList ActionListFile::All(QDir::SortFlags order) {
  QStringList paths;
  const QString folder = CUtils::GetSequenceFolder();
  for (const QFileInfo& info : QDir(folder).entryInfoList({QLatin1Char('*') + kSuffix}, QDir::Files, order)) {
    // Opening a link to a named pipe would wait for a writer.
    if (info.isFile()) paths.append(folder + QLatin1Char('/') + info.fileName());
  }
  return paths;
}

ActionListFile ActionListFile::Read(const QString& path) {
  ActionListFile list;
  QFile file(path);
  if (!file.open(QFile::ReadOnly)) return list;
  const QByteArray bytes = file.readAll();
  const QString text = QString::fromUtf8(bytes);
  const SettingsFile settings(path);
  const QSettings& values = settings.Values();
  list.name = values.value(kName).toString();
  list.category = values.value(kCategory).toString();
  int number = 0;
  for (; values.contains(Key(kActionName, number)); ++number) {
    const QVariant stored = values.value(Key(kActionSettings, number));
    list.entries.push_back(
        {values.value(Key(kActionName, number)).toString(), stored.toMap(), IsDamaged(stored, text, number)});
  }
  const QStringList keys = values.allKeys();
  list.hasEntriesAfterGap =
      std::any_of(keys.begin(), keys.end(), [number](const QString& key) { return IsActionNameAfter(key, number); });
  // QSettings skips a byte-order mark, but reports a format error.
  list.hasUnreadableLines = values.status() == QSettings::FormatError && !bytes.startsWith("\xef\xbb\xbf");
  return list;
}

bool ActionListFile::Create(const QString& path, const QString& name, const QString& category, const Entry& entry) {
  return SettingsFile::Replace(path, [&](QSettings& file) {
    file.setValue(kName, name);
    file.setValue(kCategory, category);
    file.setValue(QString("IOSettings"), 0);
    SetEntry(file, 0, entry);
  });
}

bool ActionListFile::Store(const QString& path, const ActionListFile& list) {
  return SettingsFile::Change(path, [&](QSettings& file) {
    file.setValue(kName, list.name);
    file.setValue(kCategory, list.category);
    for (int number = 0; file.contains(Key(kActionName, number)); ++number) {
      file.remove(Key(kActionName, number));
      file.remove(Key(kActionSettings, number));
    }
    for (std::size_t i = 0; i < list.entries.size(); ++i) SetEntry(file, static_cast<int>(i), list.entries[i]);
  });
}

bool ActionListFile::Append(const QString& path, const Entry& entry) {
  return SettingsFile::Change(path, [&](QSettings& file) {
    int number = 0;
    while (file.contains(Key(kActionName, number))) ++number;
    SetEntry(file, number, entry);
  });
}

bool ActionListFile::SetSettings(const QString& path, int number, const QMap<QString, QVariant>& settings) {
  return SettingsFile::Change(path, [&](QSettings& file) { file.setValue(Key(kActionSettings, number), settings); });
}

bool ActionListFile::Remove(const QString& path, int number) {
  return SettingsFile::Change(path, [&](QSettings& file) {
    for (; file.contains(Key(kActionName, number + 1)); ++number) {
      for (const QLatin1String& key : {kActionName, kActionSettings}) {
        file.setValue(Key(key, number), file.value(Key(key, number + 1)));
      }
    }
    file.remove(Key(kActionName, number));
    file.remove(Key(kActionSettings, number));
  });
}
