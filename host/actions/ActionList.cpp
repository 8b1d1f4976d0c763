// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ActionList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "host/base/CommandError.h"

namespace {

const QLatin1String kSuffix(".xqq");

QString NameKey(int index) {
  return QStringLiteral("ActionName%1").arg(index);
}
QString SettingsKey(int index) {
  return QStringLiteral("ActionPrefs%1").arg(index);
}

// The number in the key of an action's name, or -1.
int IndexOf(const QString& key) {
  bool isNumber = false;
  const QLatin1String prefix("ActionName");
  const int index = key.startsWith(prefix) ? key.midRef(prefix.size()).toInt(&isNumber) : -1;
  return isNumber ? index : -1;
}

// A map whose bytes are damaged reads as an empty one, with which an action would undo what it is to set.
bool StoresEmptyMap(const QByteArray& content, int index) {
  return content.contains(SettingsKey(index).toLatin1() + R"(=@Variant(\0\0\0\b\0\0\0\0))");
}

}  // namespace

ActionList ActionList::Read(const QString& file) {
  const auto fail = [&](const QString& reason) {
    return CommandError(kExitNotLoaded, QStringLiteral("Cannot use the action list '%1': %2").arg(file, reason));
  };
  // The settings reader does not tell a missing or unreadable file from an empty one.
  QFile probe(file);
  if (!QFileInfo::exists(file)) throw fail(QStringLiteral("there is no such file"));
  if (!QFileInfo(file).isFile()) throw fail(QStringLiteral("it is not a regular file"));
  if (!probe.open(QIODevice::ReadOnly)) throw fail(probe.errorString());
  const QByteArray content = probe.readAll();
  probe.close();

  const QSettings ini(file, QSettings::IniFormat);
  ActionList list;
  list.name_ = ini.value(QStringLiteral("SequenceName")).toString();
  list.category_ = ini.value(QStringLiteral("SequenceCategory")).toString();
  for (int index = 0; ini.contains(NameKey(index)); ++index) {
    const QVariant settings = ini.value(SettingsKey(index));
    const bool isMap = settings.userType() == QMetaType::QVariantMap;
    if (settings.isValid() && (!isMap || (settings.toMap().isEmpty() && !StoresEmptyMap(content, index)))) {
      throw fail(QStringLiteral("the settings of action %1 are damaged").arg(index));
    }
    list.steps_.push_back({ini.value(NameKey(index)).toString(), settings.toMap()});
  }
  if (ini.status() != QSettings::NoError) throw fail(QStringLiteral("it is not an action list"));
  // What the host does with a list that lacks one of its actions is not known; to leave out the rest would be worse.
  const int count = static_cast<int>(list.steps_.size());
  for (const QString& key : ini.allKeys()) {
    if (IndexOf(key) > count) throw fail(QStringLiteral("its action %1 is missing").arg(count));
  }
  if (list.steps_.empty()) throw fail(QStringLiteral("it holds no actions"));
  return list;
}

QStringList ActionList::FilesIn(const QString& folder) {
  QStringList files;
  const QDir dir(folder);
  for (const QString& name : dir.entryList({QStringLiteral("*") + kSuffix}, QDir::Files, QDir::Name)) {
    files += folder + QLatin1Char('/') + name;
  }
  return files;
}

QString ActionList::Locate(const QString& name, const QString& folder) {
  if (name.contains(QLatin1Char('/')) || (name.endsWith(kSuffix) && QFileInfo::exists(name))) return name;
  QStringList named;
  QStringList filed;
  for (const QString& file : FilesIn(folder)) {
    if (QSettings(file, QSettings::IniFormat).value(QStringLiteral("SequenceName")).toString() == name) named += file;
    const QFileInfo info(file);
    if (info.fileName() == name || info.completeBaseName() == name) filed += file;
  }
  const QStringList& found = named.isEmpty() ? filed : named;
  if (found.isEmpty()) {
    throw CommandError(kExitNotLoaded, QStringLiteral("There is no action list '%1' in %2.").arg(name, folder));
  }
  if (found.size() > 1) {
    throw CommandError(
        kExitNotLoaded,
        QStringLiteral("Several action lists are named '%1': %2").arg(name, found.join(QStringLiteral(", "))));
  }
  return found.constFirst();
}

void ActionList::StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings) {
  QSettings ini(file, QSettings::IniFormat);
  ini.setValue(SettingsKey(index), settings);
  ini.sync();
  if (ini.status() != QSettings::NoError) {
    throw CommandError(kExitNotLoaded, QStringLiteral("Cannot write the action list '%1'.").arg(file));
  }
}
