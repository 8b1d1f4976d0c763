// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// Settings of an action as a dialog has stored or printed them.
struct StoredSettings {
  QString actionName;  // empty when the settings do not name their action
  QMap<QString, QVariant> values;

  // `source` is a tool settings file (".tsf"), a file with a JSON object, the JSON object itself, or "-" for JSON on
  // the standard input. Throws CommandError(kExitUsage).
  static StoredSettings Read(const QString& source);
  // The keys that dialogs add to the settings for their own use.
  static const QStringList& KeysOfDialogs();
};
