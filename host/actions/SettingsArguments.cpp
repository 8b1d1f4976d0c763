// SPDX-License-Identifier: Apache-2.0
#include "host/actions/SettingsArguments.h"

#include <algorithm>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/actions/SettingsDescription.h"
#include "host/actions/StoredSettings.h"
#include "host/actions/UrlCheck.h"

namespace {

using Setting = SettingsDescription::Setting;

bool IsUnusableUrl(const Setting* setting, const QString& value) {
  return setting != nullptr && setting->type == SettingsDescription::Type::kUrl && !value.isEmpty() &&
         !CheckUrl(value, setting->use).error.isEmpty();
}

}  // namespace

QStringList SettingsArguments(const QString& actionName, const QMap<QString, QVariant>& settings) {
  const std::optional<SettingsDescription> description = SettingsDescription::Of(actionName);
  const bool isCommand = description && !description->CommandName().isEmpty();
  QStringList arguments = isCommand ? QStringList(description->CommandName())
                                    : QStringList{QStringLiteral("run"), QStringLiteral("--action"), actionName};
  QJsonObject others;
  bool unchecked = false;
  for (auto each = settings.begin(); each != settings.end(); ++each) {
    if (StoredSettings::KeysOfDialogs().contains(each.key())) continue;
    const Setting* const setting = description ? description->Find(each.key()) : nullptr;
    const QString value = each.value().toString();
    unchecked = unchecked || IsUnusableUrl(setting, value);
    if (!each.value().canConvert<QString>() || (description && setting == nullptr)) {
      others.insert(each.key(), QJsonValue::fromVariant(each.value()));
    } else if (value.isEmpty()) {
      arguments += {QStringLiteral("--clear"), each.key()};
    } else if (isCommand && setting == description->First() && !value.startsWith(QLatin1Char('-')) &&
               !QFileInfo::exists(value)) {
      arguments.insert(1, value);
    } else {
      arguments += {QStringLiteral("--set"), each.key() + QLatin1Char('=') + value};
    }
  }
  if (!others.isEmpty()) {
    // With --settings, a command takes no value as its first argument.
    if (isCommand && arguments.size() > 1 && !arguments[1].startsWith(QLatin1String("--"))) {
      arguments[1].prepend(description->First()->key + QLatin1Char('='));
      arguments.insert(1, QStringLiteral("--set"));
    }
    arguments +=
        {QStringLiteral("--settings"), QString::fromUtf8(QJsonDocument(others).toJson(QJsonDocument::Compact))};
  }
  if (unchecked) arguments += QStringLiteral("--unchecked");
  return arguments;
}
