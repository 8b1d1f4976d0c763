// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// What is to be done with the files: one action with its settings, an action list, or a tool settings file.
struct ActionChoice {
  enum class Kind { kNone, kAction, kList, kSettingsFile };

  static ActionChoice Action(const QString& name, const QMap<QString, QVariant>& settings);
  static ActionChoice List(const QString& file);
  static ActionChoice SettingsFile(const QString& file);
  bool operator==(const ActionChoice& other) const;
  bool operator!=(const ActionChoice& other) const { return !(*this == other); }

  Kind kind = Kind::kNone;
  QString actionName;                // of kAction
  QMap<QString, QVariant> settings;  // of kAction
  QString file;                      // ".xqq" of kList, ".tsf" of kSettingsFile; absolute
};

// Where results go and what may be done to get them.
struct OutputChoice {
  bool operator==(const OutputChoice& other) const;

  bool inPlace = true;
  QString backupSuffix = QStringLiteral(".bak");  // in place only; empty: no backup
  QString folder;                                 // unless in place; absolute
  bool allowBreakingSignatures = false;
  QStringList passwords;
};

// Why the choices cannot be run, as a sentence for people; empty when they can.
QString ProblemOf(const ActionChoice& action, const OutputChoice& output);
