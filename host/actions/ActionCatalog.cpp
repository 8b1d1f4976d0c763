// SPDX-License-Identifier: Apache-2.0
#include "host/actions/ActionCatalog.h"

#include <QDir>
#include <QLibrary>
#include <QPluginLoader>

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
  QString message = QStringLiteral("Unknown action '%1': no plug-in in %2 has it.")
                        .arg(actionName, folders_.join(QStringLiteral(" or ")));
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

const std::vector<ActionCatalog::Entry>& ActionCatalog::All() {
  while (LoadNext()) {
  }
  return entries_;
}

void ActionCatalog::ListFiles() {
  for (const QString& folder : folders_) {
    const QDir dir(folder);
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
    entries_.push_back({file, action});
  } else {
    problems_ += loader.isLoaded() ? QStringLiteral("%1: not an action plug-in").arg(file)
                                   : QStringLiteral("%1: %2").arg(file, loader.errorString());
  }
  return true;
}
