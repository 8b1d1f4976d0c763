// SPDX-License-Identifier: Apache-2.0
#include "host/command/SettingsCommand.h"

#include <algorithm>
#include <QSet>

#include "host/actions/ActionCatalog.h"
#include "host/base/CommandError.h"

namespace {

constexpr const char* kOptions[] = {"action", "set", "clear", "set-each", "settings", "unchecked"};

}  // namespace

void SettingsCommand::AddActionOption() {
  AddOption(QStringLiteral("action"), QStringLiteral("The action's name, as 'actions' shows it."),
            QStringLiteral("NAME"));
}

void SettingsCommand::AddSettingsOptions() {
  AddOption(QStringLiteral("set"), QStringLiteral("A setting of the action; may be repeated."),
            QStringLiteral("KEY=VALUE"));
  AddOption(QStringLiteral("clear"), QStringLiteral("Makes a setting empty; may be repeated."), QStringLiteral("KEY"));
  AddOption(QStringLiteral("settings"),
            QStringLiteral("Settings from a file (.tsf or JSON), from JSON, or from '-' as 'edit' prints them; --set "
                           "and --clear override them."),
            QStringLiteral("FILE|JSON"));
  for (const char* option : {"set", "clear"}) AllowRepeated(option);
}

void SettingsCommand::AddUncheckedOption() {
  AddOption(QStringLiteral("unchecked"), QStringLiteral("Takes URLs that no viewer can use."));
}

void SettingsCommand::AddTemplateOptions() {
  AddOption(QStringLiteral("set-each"),
            QStringLiteral("A setting with a value for each file, made of {folder}, {name}, {stem} and {path}; may be "
                           "repeated."),
            QStringLiteral("KEY=TEMPLATE"));
  AllowRepeated("set-each");
  AddOption(QStringLiteral("root"),
            QStringLiteral("The folder from which {folder} and {path} count (default: the folder argument)."),
            QStringLiteral("DIR"));
}

bool SettingsCommand::HasSettings() const {
  return std::any_of(std::begin(kOptions), std::end(kOptions), [&](const char* option) { return IsSet(option); });
}

QVector<QPair<QString, QString>> SettingsCommand::Pairs(const char* option, const char* form) const {
  QVector<QPair<QString, QString>> pairs;
  QSet<QString> keys;
  if (!IsSet(option)) return pairs;
  for (const QString& pair : parser_.values(QLatin1String(option))) {
    const int equals = pair.indexOf(QLatin1Char('='));
    if (equals < 1) {
      throw CommandError(
          kExitUsage,
          QStringLiteral("Option '--%1' takes %2, not '%3'.").arg(QLatin1String(option), QLatin1String(form), pair));
    }
    const QString key = pair.left(equals);
    if (keys.contains(key)) throw CommandError(kExitUsage, QStringLiteral("The setting '%1' is given twice.").arg(key));
    keys += key;
    pairs.append({key, pair.mid(equals + 1)});
  }
  return pairs;
}

void SettingsCommand::CheckSettingsOptions() const {
  Given(StoredSettings());
  if (IsSet("root") && !IsSet("set-each")) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--root' is of use with '--set-each' only."));
  }
  RefuseEmpty({"action", "settings", "root"});
}

StoredSettings SettingsCommand::Stored() const {
  return IsSet("settings") ? StoredSettings::Read(Value("settings")) : StoredSettings();
}

GivenSettings SettingsCommand::Given(const StoredSettings& stored) const {
  GivenSettings given;
  given.values = Pairs("set", "KEY=VALUE");
  given.forEachFile = Pairs("set-each", "KEY=TEMPLATE");
  if (IsSet("clear")) given.cleared = parser_.values(QStringLiteral("clear"));
  given.uncheckedUrls = IsSet("unchecked");
  given.stored = stored.values;
  return given;
}

void SettingsCommand::CheckStoredFor(const StoredSettings& stored, const QString& actionName) {
  if (stored.actionName.isEmpty() || stored.actionName == actionName) return;
  throw CommandError(
      kExitUsage,
      QStringLiteral("The settings are for the action '%1', not for '%2'.").arg(stored.actionName, actionName));
}

QString SettingsCommand::ActionNameWith(const StoredSettings& stored) const {
  QString name = IsSet("action") ? Value("action") : stored.actionName;
  if (name.isEmpty()) {
    throw CommandError(kExitUsage, QStringLiteral("The settings do not name their action; '--action' is needed."));
  }
  CheckStoredFor(stored, name);
  return name;
}

ConfiguredAction SettingsCommand::Configure(ActionCatalog& catalog, QStringList& warnings) const {
  const StoredSettings stored = Stored();
  return ConfigureAction(catalog.Get(ActionNameWith(stored)), Given(stored), warnings);
}

ConfiguredAction ConfigureAction(CActionInterface& action, const GivenSettings& given, QStringList& warnings) {
  const QString name = action.GetActionName();
  const CheckedSettings checked = CheckSettings(name, SettingsDescription::Of(name), given);
  for (const QString& warning : checked.warnings) warnings += QStringLiteral("Warning: ") + warning;
  return {&action, name, checked.values, checked.templates};
}
