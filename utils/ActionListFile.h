// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QDir>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

/// An action-list file (".xqq"): an INI file with a name, a category and actions numbered from 0.
struct ActionListFile {
  /// One action of a list.
  struct Entry {
    QString actionName;
    QMap<QString, QVariant> settings;
    bool isDamaged = false;  ///< the stored settings cannot be read, and `settings` is empty
  };

  QString name;
  QString category;
  std::vector<Entry> entries;       ///< up to the first number without an action name
  bool hasEntriesAfterGap = false;  ///< actions with higher numbers than the first missing one were left out
  /// Some lines are not settings and were left out; always false for a file with a byte-order mark.
  bool hasUnreadableLines = false;

  /// "<sequence folder>/<name with each space as "_">.xqq".
  static QString PathOf(const QString& name);
  /// The action-list files in the sequence folder; pipes and folders are left out.
  static QStringList All(QDir::SortFlags order = QDir::Name);

  /// A file that is missing or cannot be read is an empty list.
  static ActionListFile Read(const QString& path);
  /// Writes a list with one action and replaces what is there. False when it cannot be written; an existing list then
  /// stays as it was.
  static bool Create(const QString& path, const QString& name, const QString& category, const Entry& entry);
  /// Adds an action under the lowest number that is free. False when it cannot be written.
  static bool Append(const QString& path, const Entry& entry);
  /// Replaces the name, the category and all actions; what else the file has stays. False when it cannot be written.
  static bool Store(const QString& path, const ActionListFile& list);
  /// Removes one action; those after it get the next lower numbers. False when it cannot be written.
  static bool Remove(const QString& path, int number);
  /// Replaces the settings of one action. False when it cannot be written.
  static bool SetSettings(const QString& path, int number, const QMap<QString, QVariant>& settings);
};
