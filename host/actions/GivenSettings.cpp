// SPDX-License-Identifier: Apache-2.0
#include "host/actions/GivenSettings.h"

#include <algorithm>

#include "host/actions/StoredSettings.h"
#include "host/actions/UrlCheck.h"
#include "host/base/CommandError.h"
#include "host/base/Suggestion.h"

namespace {

using Setting = SettingsDescription::Setting;
using Type = SettingsDescription::Type;

[[noreturn]] void Refuse(const QString& message) {
  throw CommandError(kExitUsage, message);
}

QString UnknownKey(const SettingsDescription& description, const QString& key) {
  return QStringLiteral("The action '%1' has no setting '%2'.%3")
      .arg(description.ActionName(), key, Suggestion(key, description.Keys()));
}

const Setting& FindKey(const SettingsDescription& description, const QString& key) {
  if (const Setting* const setting = description.Find(key)) return *setting;
  Refuse(UnknownKey(description, key));
}

QVariant CheckedUrl(const Setting& setting, const QString& value, bool unchecked, QStringList& warnings) {
  if (unchecked) return value;
  const UrlCheck check = CheckUrl(value, setting.use);
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

namespace {

PathTemplate::Encoding EncodingOf(const Setting& setting) {
  return setting.type == Type::kUrl ? PathTemplate::Encoding::kUrl : PathTemplate::Encoding::kPlain;
}

// A template is checked by the value that it makes of an example path. Messages show the template itself.
PathTemplate CheckedTemplate(const Setting& setting, const QString& text, bool uncheckedUrls, QStringList& warnings) {
  if (setting.type != Type::kUrl && setting.type != Type::kText) {
    Refuse(QStringLiteral("The setting '%1' cannot have a value for each file: only texts and URLs can.")
               .arg(setting.key));
  }
  PathTemplate filler(text, EncodingOf(setting));
  const QString sample = filler.Fill("vorlane-folder/vorlane-stem.pdf");
  const auto inItsWords = [&](QString message) {
    return message.replace(sample, text)
        .replace(QLatin1String("vorlane-stem.pdf"), QLatin1String("{name}"))
        .replace(QLatin1String("vorlane-stem"), QLatin1String("{stem}"))
        .replace(QLatin1String("vorlane-folder"), QLatin1String("{folder}"));
  };
  QStringList found;
  try {
    CheckedValue(setting, sample, uncheckedUrls, found);
  } catch (const CommandError& error) {
    throw CommandError(error.Code(), inItsWords(error.Message()));
  }
  for (const QString& warning : found) warnings += inItsWords(warning);
  return filler;
}

void TakeStored(const SettingsDescription& description, const GivenSettings& given, CheckedSettings& checked) {
  for (auto each = given.stored.begin(); each != given.stored.end(); ++each) {
    if (given.Has(each.key())) continue;
    const Setting* const setting = description.Find(each.key());
    if (setting == nullptr) {
      if (!StoredSettings::KeysOfDialogs().contains(each.key())) Refuse(UnknownKey(description, each.key()));
      checked.values.insert(each.key(), each.value());
    } else if (!each.value().isNull() && !each.value().canConvert<QString>()) {
      Refuse(QStringLiteral("The setting '%1' takes one value, not several.").arg(setting->key));
    } else {
      checked.values.insert(each.key(),
                            CheckedValue(*setting, each.value().toString(), given.uncheckedUrls, checked.warnings));
    }
  }
}

void TakeGiven(const SettingsDescription& description, const GivenSettings& given, CheckedSettings& checked) {
  for (const QString& key : given.cleared) {
    CheckClearing(FindKey(description, key));
    checked.values.insert(key, QString());
  }
  for (const auto& [key, value] : given.values) {
    const Setting& setting = FindKey(description, key);
    if (given.cleared.contains(key)) Refuse(QStringLiteral("The setting '%1' is both set and cleared.").arg(key));
    checked.values.insert(key, CheckedValue(setting, value, given.uncheckedUrls, checked.warnings));
  }
  for (const auto& [key, text] : given.forEachFile) {
    const Setting& setting = FindKey(description, key);
    if (checked.values.contains(key)) Refuse(QStringLiteral("The setting '%1' is given twice.").arg(key));
    checked.templates.insert(key, CheckedTemplate(setting, text, given.uncheckedUrls, checked.warnings));
  }
}

// Standard values for what is not given.
void Complete(const SettingsDescription& description, CheckedSettings& checked) {
  for (const Setting& setting : description.Settings()) {
    if (checked.values.contains(setting.key) || checked.templates.contains(setting.key)) continue;
    if (setting.required) {
      const QString clear = setting.empty.isEmpty()
                                ? QString()
                                : QStringLiteral(" (or --clear %1, which %2)").arg(setting.key, setting.empty);
      Refuse(QStringLiteral("The action '%1' needs the setting '%2': --set %2=%3%4.")
                 .arg(description.ActionName(), setting.key, setting.TypeName(), clear));
    }
    if (setting.standard) {
      checked.values.insert(setting.key, setting.type == Type::kSwitch
                                             ? QVariant(*setting.standard == QLatin1String("true"))
                                             : QVariant(*setting.standard));
    }
  }
}

CheckedSettings CheckDescribed(const SettingsDescription& description, const GivenSettings& given) {
  CheckedSettings checked;
  TakeGiven(description, given, checked);
  TakeStored(description, given, checked);
  Complete(description, checked);
  return checked;
}

// The action has no description of its settings.
CheckedSettings TakeAll(const GivenSettings& given) {
  CheckedSettings checked{given.stored, {}, {}};
  for (const auto& [key, value] : given.values) checked.values.insert(key, value);
  for (const QString& key : given.cleared) checked.values.insert(key, QString());
  for (const auto& [key, text] : given.forEachFile) {
    checked.templates.insert(key, PathTemplate(text, PathTemplate::Encoding::kPlain));
  }
  return checked;
}

}  // namespace

bool GivenSettings::Has(const QString& key) const {
  const auto names = [&](const QPair<QString, QString>& each) { return each.first == key; };
  return cleared.contains(key) || std::any_of(values.begin(), values.end(), names) ||
         std::any_of(forEachFile.begin(), forEachFile.end(), names);
}

CheckedSettings CheckSettings(const QString& actionName, const std::optional<SettingsDescription>& description,
                              const GivenSettings& given) {
  CheckedSettings checked = description ? CheckDescribed(*description, given) : TakeAll(given);
  if (!description) {
    checked.warnings +=
        QStringLiteral("The action '%1' does not describe its settings; they are not checked.").arg(actionName);
  }
  return checked;
}

void CheckKeys(const SettingsDescription& description, const GivenSettings& given) {
  for (const auto& [key, value] : given.values) FindKey(description, key);
  for (const QString& key : given.cleared) FindKey(description, key);
  for (const auto& [key, text] : given.forEachFile) FindKey(description, key);
}

QMap<QString, QVariant> StartSettings(const std::optional<SettingsDescription>& description,
                                      const GivenSettings& given) {
  QMap<QString, QVariant> settings = given.stored;
  QStringList ignored;
  for (const auto& [key, value] : given.values) {
    settings.insert(key, description ? CheckedValue(FindKey(*description, key), value, true, ignored) : value);
  }
  for (const QString& key : given.cleared) {
    if (description) CheckClearing(FindKey(*description, key));
    settings.insert(key, QString());
  }
  return settings;
}

QStringList UnknownKeys(const SettingsDescription& description, const QMap<QString, QVariant>& settings) {
  QStringList unknown;
  for (const QString& key : settings.keys()) {
    if (StoredSettings::KeysOfDialogs().contains(key) || description.Find(key) != nullptr) continue;
    unknown += UnknownKey(description, key);
  }
  return unknown;
}

void CheckRequired(const SettingsDescription& description, const QMap<QString, QVariant>& settings,
                   const QString& list) {
  for (const Setting& setting : description.Settings()) {
    if (!setting.required || settings.contains(setting.key)) continue;
    QString why;
    if (!setting.empty.isEmpty()) {
      why = QStringLiteral(
                " An action would take it for an empty one, which %1; a list for that is made by 'lists add "
                "NAME --action \"%2\" --clear %3'.")
                .arg(setting.empty, description.ActionName(), setting.key);
    }
    const QStringList unknown = UnknownKeys(description, settings);
    Refuse(QStringLiteral("The action list '%1': the action '%2' lacks the setting '%3'.%4")
               .arg(list, description.ActionName(), setting.key,
                    unknown.isEmpty() ? why : QLatin1Char(' ') + unknown.join(QLatin1Char(' '))));
  }
}
