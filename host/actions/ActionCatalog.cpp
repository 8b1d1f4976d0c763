// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ActionCatalog.h"

#include <algorithm>
#include <QDir>
#include <QLibrary>
#include <QPluginLoader>
#include <QSet>

#include "host/base/CommandError.h"
#include "host/base/Suggestion.h"

CActionInterface* ActionCatalog::Find(const QString& actionName) {
  for (std::size_t i = 0; i < entries_.size() || LoadNext();) {
    if (i == entries_.size()) continue;
    if (entries_[i].action->GetActionName() == actionName) return entries_[i].action;
    ++i;
  }
  return nullptr;
}

CActionInterface& ActionCatalog::Get(const QString& actionName) {
  CActionInterface* const action = Find(actionName);
  if (action != nullptr) return *action;
  QString message = QStringLiteral("Unknown action '%1': no plug-in in %2 has it.").arg(actionName, FolderNames());
  QStringList known;
  for (const Entry& entry : entries_) known += entry.action->GetActionName();
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
  while (LoadNext()) {
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

// Loads one more file; false when there is none left.
bool ActionCatalog::LoadNext() {
  if (!listed_) ListFiles();
  if (next_ == files_.size()) return false;
  const QString& file = files_.at(next_++);
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
  warnings_ +=
      QStringLiteral("Two plug-ins have the action '%1': %2 is used, not %3.").arg(name, same->file, entry.file);
}
