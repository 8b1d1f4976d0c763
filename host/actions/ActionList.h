// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

// An action list file (".xqq", an INI file of Qt): its actions numbered from 0, read up to the first missing name.
class ActionList {
 public:
  struct Step {
    QString actionName;
    QMap<QString, QVariant> settings;
  };

  // Throws CommandError(kExitNotLoaded) when the file cannot be read or is no action list.
  static ActionList Read(const QString& file);
  // The file that NAME means: a path, or a list of the folder by its own name or by its file name. Throws
  // CommandError(kExitNotLoaded) when there is none or the name fits several.
  static QString Locate(const QString& name, const QString& folder);
  // The action list files of a folder, by file name.
  static QStringList FilesIn(const QString& folder);
  // Replaces the settings of one action in the file, at once or not at all; all else stays. Throws
  // CommandError(kExitNotLoaded) when the file cannot be written.
  static void StoreSettings(const QString& file, int index, const QMap<QString, QVariant>& settings);

  const QString& Name() const { return name_; }
  const QString& Category() const { return category_; }
  const std::vector<Step>& Steps() const { return steps_; }

 private:
  QString name_;
  QString category_;
  std::vector<Step> steps_;
};
