// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "plugin/CActionInterface.h"

// The action plug-ins of some folders, loaded as they are needed: folder by folder, in the order of the file names. A
// file with the name of the wanted action (SetBaseURL.so for "Set Base URL") comes before the others of its folder. Of
// two actions with the same name the first is used, and a warning names the other. Loaded plug-ins stay loaded until
// the process ends.
class ActionCatalog {
 public:
  explicit ActionCatalog(const QStringList& folders) : folders_(folders) {}

  // The action of that name, or null. Loads no more plug-ins than it takes to find it.
  CActionInterface* Find(const QString& actionName);
  // The same by the command in the action's settings description. Throws as SettingsDescription::Of does.
  CActionInterface* FindCommand(const QString& commandName);
  // The same as Find, but throws CommandError(kExitNotLoaded), naming the plug-ins that could not be loaded.
  CActionInterface& Get(const QString& actionName);

  struct Entry {
    QString file;
    CActionInterface* action;
  };
  const std::vector<Entry>& All();
  // The names of all actions, and of all their commands.
  QStringList ActionNames();
  QStringList CommandNames();
  // For messages: "/a/Tools or /b/Tools".
  QString FolderNames() const;
  // One line for each file that could not be loaded or has no action.
  const QStringList& Problems() const { return problems_; }
  // Warnings about the plug-ins loaded so far, a sentence each.
  const QStringList& Warnings() const { return warnings_; }

 private:
  template <typename Matches>
  CActionInterface* FindBy(const QString& name, Matches matches);
  bool LoadNext(const QString& wanted);
  void Add(const Entry& entry);
  void ListFiles();

  QStringList folders_;
  QStringList files_;  // those not loaded yet
  bool listed_ = false;
  std::vector<Entry> entries_;
  QStringList problems_;
  QStringList warnings_;
};
