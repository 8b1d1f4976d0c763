// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "plugin/CActionInterface.h"

// The action plug-ins of some folders, loaded as they are needed: folder by folder, by file name, but a file that has
// the name of the action in question (SetBaseURL.so for "Set Base URL") before the others of its folder. Of two actions
// with the same name the first counts, and a warning names the other. Loaded plug-ins stay loaded until the process
// ends.
class ActionCatalog {
 public:
  explicit ActionCatalog(const QStringList& folders) : folders_(folders) {}

  // The action of that name, or null. Loads no more plug-ins than it takes to find it.
  CActionInterface* Find(const QString& actionName);
  // Likewise, by the command that the action's settings description names. Throws as SettingsDescription::Of does.
  CActionInterface* FindCommand(const QString& commandName);
  // As Find, but throws CommandError(kExitNotLoaded) that names the plug-ins which could not be loaded.
  CActionInterface& Get(const QString& actionName);

  struct Entry {
    QString file;
    CActionInterface* action;
  };
  const std::vector<Entry>& All();
  // Of all actions.
  QStringList ActionNames();
  QStringList CommandNames();
  // For messages: "/a/Tools or /b/Tools".
  QString FolderNames() const;
  // One line for each file among the plug-ins that could not be loaded or holds no action.
  const QStringList& Problems() const { return problems_; }
  // Sentences about plug-ins that were met so far.
  const QStringList& Warnings() const { return warnings_; }

 private:
  template <typename Matches>
  CActionInterface* FindBy(const QString& name, Matches matches);
  bool LoadNext(const QString& wanted);
  void Add(const Entry& entry);
  void ListFiles();

  QStringList folders_;
  QStringList files_;  // that are not loaded yet
  bool listed_ = false;
  std::vector<Entry> entries_;
  QStringList problems_;
  QStringList warnings_;
};
