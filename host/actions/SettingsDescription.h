// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

#include "host/actions/UrlCheck.h"

// The description of an action's settings, from a JSON file in its plug-in's resources (":/Vorlane/Settings/"). The
// guide for authors documents the file.
class SettingsDescription {
 public:
  enum class Type { kText, kUrl, kNumber, kChoice, kSwitch };
  struct Setting {
    QString key;
    Type type = Type::kText;
    QString title;
    QString help;
    std::optional<QString> standard;  // the value when none is given
    bool required = false;
    QString empty;                // what an empty value does; empty if the value cannot be empty
    UrlUse use = UrlUse::kOther;  // how a URL is used
    QStringList choices;
    std::optional<double> least;
    std::optional<double> most;

    // "URL", "NUMBER" and so on, for help texts.
    QString TypeName() const;
  };

  // The description of the action, from the resources of the loaded plug-ins; nothing when there is none. Throws
  // CommandError(kExitNotLoaded) for one that does not follow the schema.
  static std::optional<SettingsDescription> Of(const QString& actionName);
  // Throws CommandError(kExitNotLoaded) that names `origin`.
  static SettingsDescription FromJson(const QByteArray& json, const QString& origin);

  const QString& ActionName() const { return actionName_; }
  // The name of the action's own command; empty when it has none.
  const QString& CommandName() const { return commandName_; }
  // The key that the command's first argument sets, null when it takes none.
  const Setting* First() const { return Find(first_); }
  const std::vector<Setting>& Settings() const { return settings_; }
  const Setting* Find(const QString& key) const;
  QStringList Keys() const;
  // The description as the plug-in has it.
  const QJsonObject& Json() const { return json_; }
  // For users: a heading and a paragraph for each setting.
  QString HelpText() const;

 private:
  static SettingsDescription FromObject(const QJsonObject& json, const QString& origin);

  QJsonObject json_;
  QString actionName_;
  QString commandName_;
  QString first_;
  std::vector<Setting> settings_;
};
