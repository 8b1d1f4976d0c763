// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ActionList.h"

#include <cstdio>
#include <QFile>
#include <QFileInfo>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"
#include "host/base/Suggestion.h"
#include "utils/CUtils.h"

namespace {

QString FileMessage(const QString& file, const QString& reason) {
  return QStringLiteral("Cannot use the action list '%1': %2").arg(file, reason);
}

// ActionListFile reads a missing or unreadable file as an empty list.
void CheckReadable(const QString& file) {
  const auto refuse = [&](const QString& reason) { throw CommandError(kExitNotLoaded, FileMessage(file, reason)); };
  const QFileInfo info(file);
  if (!info.exists()) refuse(QStringLiteral("there is no such file"));
  if (!info.isFile()) refuse(QStringLiteral("it is not a regular file"));
  QFile probe(file);
  if (!probe.open(QIODevice::ReadOnly)) refuse(probe.errorString());
}

void CheckWritten(const QString& file, bool written) {
  if (!written) throw CommandError(kExitNotLoaded, QStringLiteral("Cannot write the action list '%1'.").arg(file));
}

}  // namespace

ActionListFile ActionList::Read(const QString& file, QStringList* warnings) {
  CheckReadable(file);
  const auto refuse = [&](const QString& reason) { throw CommandError(kExitNotLoaded, FileMessage(file, reason)); };
  ActionListFile list = ActionListFile::Read(file);
  const auto count = list.entries.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (list.entries[i].isDamaged) refuse(QStringLiteral("the settings of action %1 are damaged").arg(i));
  }
  if (count == 0 && list.hasEntriesAfterGap) refuse(QStringLiteral("its action 0 is missing"));
  if (count == 0 && list.hasUnreadableLines) refuse(QStringLiteral("it is not an action list"));
  if (count == 0) refuse(QStringLiteral("it holds no actions"));
  if (warnings == nullptr) return list;
  const auto warn = [&](const QString& reason) {
    *warnings += QStringLiteral("Warning: the action list '%1': %2").arg(file, reason);
  };
  if (list.hasEntriesAfterGap) {
    warn(QStringLiteral("its action %1 is missing; the actions after it are left out").arg(count));
  }
  if (list.hasUnreadableLines) warn(QStringLiteral("some of its lines cannot be read; they are left out"));
  return list;
}

std::optional<QString> ActionList::Find(const QString& name) {
  if (name.contains(QLatin1Char('/')) || (name.endsWith(QLatin1String(".xqq")) && QFileInfo::exists(name))) return name;
  QStringList named;
  QStringList filed;
  for (const QString& file : ActionListFile::All()) {
    if (ActionListFile::Read(file).name == name) named += file;
    const QFileInfo info(file);
    if (info.fileName() == name || info.completeBaseName() == name) filed += file;
  }
  const QStringList& found = named.isEmpty() ? filed : named;
  if (found.isEmpty()) return std::nullopt;
  if (found.size() == 1) return found.constFirst();
  throw CommandError(
      kExitNotLoaded,
      QStringLiteral("Several action lists are named '%1': %2").arg(name, found.join(QStringLiteral(", "))));
}

QString ActionList::Locate(const QString& name) {
  if (const std::optional<QString> found = Find(name)) return *found;
  QStringList names;
  for (const QString& file : ActionListFile::All()) names += ActionListFile::Read(file).name;
  throw CommandError(kExitNotLoaded, QStringLiteral("There is no action list '%1' in %2.%3")
                                         .arg(name, CUtils::GetSequenceFolder(), Suggestion(name, names)));
}

void ActionList::Create(const QString& file, const QString& name, const QString& category,
                        const ActionListFile::Entry& entry) {
  CheckWritten(file, ActionListFile::Create(file, name, category, entry));
}

QString ActionList::FileAfterRename(const QString& file, const QString& newName) {
  const QFileInfo info(file);
  const QString named = QFileInfo(ActionListFile::PathOf(ActionListFile::Read(file).name)).fileName();
  if (info.fileName() != named) return file;
  return info.path() + QLatin1Char('/') + QFileInfo(ActionListFile::PathOf(newName)).fileName();
}

QString ActionList::Store(const QString& file, const ActionListFile& list) {
  QString renamed = FileAfterRename(file, list.name);
  CheckWritten(file, ActionListFile::Store(file, list));
  if (renamed == file) return file;
  CheckWritten(renamed,
               std::rename(NativeName::ToBytes(file).constData(), NativeName::ToBytes(renamed).constData()) == 0);
  return renamed;
}

void ActionList::Append(const QString& file, const ActionListFile::Entry& entry) {
  CheckWritten(file, ActionListFile::Append(file, entry));
}

void ActionList::RemoveAction(const QString& file, int index) {
  CheckWritten(file, ActionListFile::Remove(file, index));
}

void ActionList::RemoveFile(const QString& file) {
  CheckReadable(file);
  const ActionListFile list = ActionListFile::Read(file);
  if (list.name.isEmpty() && list.entries.empty()) {
    throw CommandError(kExitNotLoaded, FileMessage(file, QStringLiteral("it is not an action list")));
  }
  QFile stale(file);
  if (stale.remove()) return;
  throw CommandError(kExitNotLoaded,
                     QStringLiteral("Cannot remove the action list '%1': %2").arg(file, stale.errorString()));
}

void ActionList::StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings) {
  CheckWritten(file, ActionListFile::SetSettings(file, index, settings));
}
