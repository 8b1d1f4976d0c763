// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ActionCatalog.h"

#include <algorithm>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>
#include <QSet>

#include "host/actions/SettingsDescription.h"
#include "host/base/CommandError.h"
#include "host/base/Suggestion.h"

namespace {

// True for "SetBaseURL.so" with the action "Set Base URL" or the command "set-base-url".
bool IsNamedAfter(const QString& file, QString name) {
  name.remove(QLatin1Char(' ')).remove(QLatin1Char('-'));
  return QFileInfo(file).completeBaseName().compare(name, Qt::CaseInsensitive) == 0;
}

bool IsSameFolder(const QString& one, const QString& other) {
  return QFileInfo(one).path() == QFileInfo(other).path();
}

QString CommandOf(const ActionCatalog::Entry& entry) {
  const std::optional<SettingsDescription> description = SettingsDescription::Of(entry.action->GetActionName());
  return description ? description->CommandName() : QString();
}

}  // namespace

CActionInterface* ActionCatalog::Find(const QString& actionName) {
  return FindBy(actionName, [&](const Entry& entry) { return entry.action->GetActionName() == actionName; });
}

CActionInterface* ActionCatalog::FindCommand(const QString& commandName) {
  return FindBy(commandName, [&](const Entry& entry) { return CommandOf(entry) == commandName; });
}

template <typename Matches>
CActionInterface* ActionCatalog::FindBy(const QString& name, Matches matches) {
  for (std::size_t i = 0; i < entries_.size() || LoadNext(name);) {
    if (i == entries_.size()) continue;
    if (matches(entries_[i])) return entries_[i].action;
    ++i;
  }
  return nullptr;
}

QStringList ActionCatalog::ActionNames() {
  QStringList names;
  for (const Entry& entry : All()) names += entry.action->GetActionName();
  return names;
}

QStringList ActionCatalog::CommandNames() {
  QStringList names;
  for (const Entry& entry : All()) names += CommandOf(entry);
  names.removeAll(QString());
  return names;
}

CActionInterface& ActionCatalog::Get(const QString& actionName) {
  CActionInterface* const action = Find(actionName);
  if (action != nullptr) return *action;
  QString message = QStringLiteral("Unknown action '%1': no plug-in in %2 has it.").arg(actionName, FolderNames());
  const QStringList known = ActionNames();
  const QString suggestion = Suggestion(actionName, known);
  if (!suggestion.isEmpty()) {
    message += suggestion;
  } else if (!known.isEmpty()) {
    message += QStringLiteral(" Known: '%1'.").arg(known.join(QStringLiteral("', '")));
  }
  if (!problems_.isEmpty()) message += QStringLiteral(" Not loaded: ") + problems_.join(QStringLiteral("; "));
  throw CommandError(kExitNotLoaded, message);
}

QString ActionCatalog::FolderNames() const {
  QStringList names;
  for (const QString& folder : folders_) names += QDir::cleanPath(folder);
  return names.join(QStringLiteral(" or "));
}

const std::vector<ActionCatalog::Entry>& ActionCatalog::All() {
  while (LoadNext({})) {
  }
  return entries_;
}

void ActionCatalog::ListFiles() {
  QSet<QString> met;
  for (const QString& folder : folders_) {
    const QDir dir(QDir::cleanPath(folder));
    if (!dir.exists() || met.contains(dir.canonicalPath())) continue;
    met += dir.canonicalPath();
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
      if (QLibrary::isLibrary(name)) files_ += dir.absoluteFilePath(name);
    }
  }
  listed_ = true;
}

// Loads one more file, of the first folder that has one left; false when there is none left.
bool ActionCatalog::LoadNext(const QString& wanted) {
  if (!listed_) ListFiles();
  if (files_.isEmpty()) return false;
  const auto named = std::find_if(files_.begin(), files_.end(), [&](const QString& file) {
    return IsNamedAfter(file, wanted) && IsSameFolder(file, files_.first());
  });
  const QString file = files_.takeAt(named != files_.end() ? static_cast<int>(named - files_.begin()) : 0);
  QPluginLoader loader(file);
  CActionInterface* const action = qobject_cast<CActionInterface*>(loader.instance());
  if (action != nullptr) {
    Add({file, action});
  } else if (loader.isLoaded()) {
    problems_ += QStringLiteral("%1: not an action plug-in").arg(file);
  } else {
    const QString error = loader.errorString();
    problems_ += error.contains(file) ? error : QStringLiteral("%1: %2").arg(file, error);
  }
  return true;
}

void ActionCatalog::Add(const Entry& entry) {
  const QString name = entry.action->GetActionName();
  const auto same = std::find_if(entries_.begin(), entries_.end(),
                                 [&](const Entry& other) { return other.action->GetActionName() == name; });
  if (same == entries_.end()) return entries_.push_back(entry);
  Entry unused = entry;
  const bool isBetter = IsNamedAfter(entry.file, name) && !IsNamedAfter(same->file, name);
  if (isBetter && IsSameFolder(entry.file, same->file)) std::swap(*same, unused);
  warnings_ +=
      QStringLiteral("Two plug-ins have the action '%1': %2 is used, not %3.").arg(name, same->file, unused.file);
}
