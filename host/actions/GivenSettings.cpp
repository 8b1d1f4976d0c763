// SPDX-License-Identifier: Apache-2.0
#include "host/actions/GivenSettings.h"

#include "host/actions/UrlCheck.h"
#include "host/base/CommandError.h"
#include "host/base/Suggestion.h"

namespace {

using Setting = SettingsDescription::Setting;
using Type = SettingsDescription::Type;

[[noreturn]] void Refuse(const QString& message) {
  throw CommandError(kExitUsage, message);
}

const Setting& FindKey(const SettingsDescription& description, const QString& key) {
  if (const Setting* const setting = description.Find(key)) return *setting;
  Refuse(QStringLiteral("The action '%1' has no setting '%2'.%3")
             .arg(description.ActionName(), key, Suggestion(key, description.Keys())));
}

QVariant CheckedUrl(const Setting& setting, const QString& value, bool unchecked, QStringList& warnings) {
  if (unchecked) return value;
  const UrlCheck check = CheckUrl(value, setting.isBase);
  if (!check.error.isEmpty()) {
    Refuse(QStringLiteral("The setting '%1' cannot be '%2': %3. Use --unchecked to take it all the same.")
               .arg(setting.key, value, check.error));
  }
  for (const QString& warning : check.warnings) warnings += QStringLiteral("'%1': %2").arg(value, warning);
  return value;
}

QVariant CheckedNumber(const Setting& setting, const QString& value) {
  bool valid = false;
  const double number = value.toDouble(&valid);
  if (!valid || number < setting.least.value_or(number) || number > setting.most.value_or(number)) {
    QString range;
    if (setting.least) range += QStringLiteral(" from %1").arg(*setting.least);
    if (setting.most) range += QStringLiteral(" to %1").arg(*setting.most);
    Refuse(QStringLiteral("The setting '%1' takes a number%2, not '%3'.").arg(setting.key, range, value));
  }
  return value;
}

QVariant CheckedSwitch(const Setting& setting, const QString& value) {
  if (value == QLatin1String("true")) return true;
  if (value == QLatin1String("false")) return false;
  Refuse(QStringLiteral("The setting '%1' takes true or false, not '%2'.").arg(setting.key, value));
}

void CheckClearing(const Setting& setting) {
  if (setting.empty.isEmpty()) Refuse(QStringLiteral("The setting '%1' cannot be empty.").arg(setting.key));
}

}  // namespace

QVariant CheckedValue(const Setting& setting, const QString& value, bool uncheckedUrls, QStringList& warnings) {
  if (value.isEmpty()) {
    CheckClearing(setting);
    Refuse(QStringLiteral("An empty '%1' %2. If that is meant, use --clear %1.").arg(setting.key, setting.empty));
  }
  switch (setting.type) {
    case Type::kUrl:
      return CheckedUrl(setting, value, uncheckedUrls, warnings);
    case Type::kNumber:
      return CheckedNumber(setting, value);
    case Type::kSwitch:
      return CheckedSwitch(setting, value);
    case Type::kChoice:
      if (setting.choices.contains(value)) return value;
      Refuse(
          QStringLiteral("The setting '%1' takes one of %2, not '%3'.%4")
              .arg(setting.key, setting.choices.join(QStringLiteral(", ")), value, Suggestion(value, setting.choices)));
    case Type::kText:
      break;
  }
  return value;
}

CheckedSettings CheckSettings(const QString& actionName, const std::optional<SettingsDescription>& description,
                              const GivenSettings& given) {
  CheckedSettings checked;
  if (!description) {
    for (const auto& [key, value] : given.values) checked.values.insert(key, value);
    for (const QString& key : given.cleared) checked.values.insert(key, QString());
    checked.warnings +=
        QStringLiteral("The action '%1' does not describe its settings; they are not checked.").arg(actionName);
    return checked;
  }
  for (const QString& key : given.cleared) {
    CheckClearing(FindKey(*description, key));
    checked.values.insert(key, QString());
  }
  for (const auto& [key, value] : given.values) {
    const Setting& setting = FindKey(*description, key);
    if (checked.values.contains(key)) Refuse(QStringLiteral("The setting '%1' is both set and cleared.").arg(key));
    checked.values.insert(key, CheckedValue(setting, value, given.uncheckedUrls, checked.warnings));
  }
  for (const QString& key : given.forEachFile) {
    FindKey(*description, key);
    if (checked.values.contains(key)) Refuse(QStringLiteral("The setting '%1' is given twice.").arg(key));
  }
  for (const Setting& setting : description->Settings()) {
    if (checked.values.contains(setting.key) || given.forEachFile.contains(setting.key)) continue;
    if (setting.required) {
      const QString clear = setting.empty.isEmpty()
                                ? QString()
                                : QStringLiteral(" (or --clear %1, which %2)").arg(setting.key, setting.empty);
      Refuse(QStringLiteral("The action '%1' needs the setting '%2': --set %2=%3%4.")
                 .arg(actionName, setting.key, setting.TypeName(), clear));
    }
    if (setting.standard) {
      checked.values.insert(setting.key, setting.type == Type::kSwitch
                                             ? QVariant(*setting.standard == QLatin1String("true"))
                                             : QVariant(*setting.standard));
    }
  }
  return checked;
}

QStringList UnknownKeys(const SettingsDescription& description, const QMap<QString, QVariant>& settings) {
  static const QStringList ofDialogs{QStringLiteral("ActionName"), QStringLiteral("ActionListName"),
                                     QStringLiteral("ActionListCategory"), QStringLiteral("ActionListOverwrite"),
                                     QStringLiteral("CollectionName")};
  QStringList unknown;
  for (const QString& key : settings.keys()) {
    if (!ofDialogs.contains(key) && description.Find(key) == nullptr) unknown += key;
  }
  return unknown;
}
