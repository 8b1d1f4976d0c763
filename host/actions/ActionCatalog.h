// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "plugin/CActionInterface.h"

// The action plug-ins of some folders, loaded as they are needed: folder by folder, by file name. Of two actions with
// the same name the first counts, and a warning names the other. Loaded plug-ins stay loaded until the process ends.
class ActionCatalog {
 public:
  explicit ActionCatalog(const QStringList& folders) : folders_(folders) {}

  // The action of that name, or null. Loads no more plug-ins than it takes to find it.
  CActionInterface* Find(const QString& actionName);
  // As Find, but throws CommandError(kExitNotLoaded) that names the plug-ins which could not be loaded.
  CActionInterface& Get(const QString& actionName);

  struct Entry {
    QString file;
    CActionInterface* action;
  };
  const std::vector<Entry>& All();
  // For messages: "/a/Tools or /b/Tools".
  QString FolderNames() const;
  // One line for each file among the plug-ins that could not be loaded or holds no action.
  const QStringList& Problems() const { return problems_; }
  // Sentences about plug-ins that were met so far.
  const QStringList& Warnings() const { return warnings_; }

 private:
  bool LoadNext();
  void Add(const Entry& entry);
  void ListFiles();

  QStringList folders_;
  QStringList files_;
  bool listed_ = false;
  int next_ = 0;
  std::vector<Entry> entries_;
  QStringList problems_;
  QStringList warnings_;
};
