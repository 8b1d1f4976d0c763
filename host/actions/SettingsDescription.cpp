// SPDX-License-Identifier: Apache-2.0
#include "host/actions/SettingsDescription.h"

#include <algorithm>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QSet>

#include "host/base/CommandError.h"

namespace {

using Setting = SettingsDescription::Setting;
using Type = SettingsDescription::Type;

struct TypeWord {
  Type type;
  const char* word;
  const char* placeholder;
};
constexpr TypeWord kTypes[] = {{Type::kText, "text", "TEXT"},
                               {Type::kUrl, "url", "URL"},
                               {Type::kNumber, "number", "NUMBER"},
                               {Type::kChoice, "choice", "CHOICE"},
                               {Type::kSwitch, "switch", "true|false"}};

// Reads the members of an object and at the end refuses those that were not read.
class Members {
 public:
  Members(const QJsonObject& object, const QString& origin) : object_(object), origin_(origin) {}

  QString Text(const char* name, bool needed = false) {
    const QJsonValue value = Take(name);
    if (value.isUndefined() ? needed : !value.isString()) Refuse(QStringLiteral("'%1' must be a text").arg(name));
    return value.toString();
  }
  bool Truth(const char* name) {
    const QJsonValue value = Take(name);
    if (!value.isUndefined() && !value.isBool()) Refuse(QStringLiteral("'%1' must be true or false").arg(name));
    return value.toBool();
  }
  // `true` or a word.
  UrlUse Use(const char* name) {
    const QJsonValue value = Take(name);
    if (value.isUndefined() || value == QJsonValue(false)) return UrlUse::kOther;
    if (value == QJsonValue(true)) return UrlUse::kBaseOfViewers;
    if (value != QJsonValue(QStringLiteral("action"))) {
      Refuse(QStringLiteral("'%1' must be true, false or \"action\"").arg(name));
    }
    return UrlUse::kBaseOfAction;
  }
  std::optional<double> Number(const char* name) {
    const QJsonValue value = Take(name);
    if (value.isUndefined()) return std::nullopt;
    if (!value.isDouble()) Refuse(QStringLiteral("'%1' must be a number").arg(name));
    return value.toDouble();
  }
  QJsonArray Array(const char* name, bool needed) {
    const QJsonValue value = Take(name);
    if (value.isUndefined() ? needed : !value.isArray()) Refuse(QStringLiteral("'%1' must be an array").arg(name));
    return value.toArray();
  }
  bool Has(const char* name) const { return object_.contains(QLatin1String(name)); }
  void RefuseRest() const {
    if (!object_.isEmpty()) Refuse(QStringLiteral("'%1' is unknown").arg(object_.keys().constFirst()));
  }
  [[noreturn]] void Refuse(const QString& why) const {
    throw CommandError(kExitNotLoaded, QStringLiteral("The settings description %1: %2.").arg(origin_, why));
  }

 private:
  QJsonValue Take(const char* name) { return object_.take(QLatin1String(name)); }

  QJsonObject object_;
  QString origin_;
};

Type TypeOf(const QString& word, const Members& members) {
  for (const TypeWord& each : kTypes) {
    if (word == QLatin1String(each.word)) return each.type;
  }
  members.Refuse(QStringLiteral("'%1' is not a type").arg(word));
}

Setting ReadSetting(const QJsonObject& object, const QString& origin) {
  Members members(object, origin);
  Setting setting;
  setting.key = members.Text("key", true);
  setting.type = TypeOf(members.Text("type", true), members);
  setting.title = members.Text("title", true);
  setting.help = members.Text("help", true);
  if (members.Has("default")) setting.standard = members.Text("default");
  setting.required = members.Truth("required");
  setting.empty = members.Text("empty");
  setting.use = members.Use("base");
  for (const auto& choice : members.Array("choices", setting.type == Type::kChoice)) {
    setting.choices += choice.toString();
  }
  setting.least = members.Number("least");
  setting.most = members.Number("most");
  members.RefuseRest();
  if (setting.key.isEmpty() || setting.key.contains(QLatin1Char('=')))
    members.Refuse(QStringLiteral("a key is missing"));
  return setting;
}

// Every plug-in puts its file below one folder; the action's name inside shows whose it is. Each file is read once.
const QMap<QString, QJsonObject>& ObjectsByAction() {
  static QMap<QString, QJsonObject> objects;
  static QSet<QString> read;
  const QDir folder(QStringLiteral(":/Vorlane/Settings"));
  for (const QString& name : folder.entryList(QDir::Files, QDir::Unsorted)) {
    QFile file(folder.filePath(name));
    if (read.contains(name) || !file.open(QIODevice::ReadOnly)) continue;
    read += name;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    objects.insert(object.value(QLatin1String("action")).toString(), object);
  }
  return objects;
}

bool CanBeCommand(const QString& name) {
  const auto isLetter = [](QChar c) { return c >= 'a' && c <= 'z'; };
  return isLetter(name[0]) && std::all_of(name.begin(), name.end(),
                                          [&](QChar c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-'; });
}

}  // namespace

QString SettingsDescription::Setting::TypeName() const {
  if (type == Type::kChoice) return choices.join(QLatin1Char('|'));
  const auto* const found =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&](const TypeWord& each) { return each.type == type; });
  return QLatin1String(found->placeholder);
}

std::optional<SettingsDescription> SettingsDescription::Of(const QString& actionName) {
  const QMap<QString, QJsonObject>& objects = ObjectsByAction();
  const auto found = objects.find(actionName);
  if (found == objects.end()) return std::nullopt;
  return FromObject(*found, QStringLiteral("of the action '%1'").arg(actionName));
}

SettingsDescription SettingsDescription::FromJson(const QByteArray& json, const QString& origin) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(json, &error);
  if (document.isObject()) return FromObject(document.object(), origin);
  Members({}, origin).Refuse(QStringLiteral("it is not a JSON object (%1)").arg(error.errorString()));
}

SettingsDescription SettingsDescription::FromObject(const QJsonObject& json, const QString& origin) {
  Members members(json, origin);
  SettingsDescription description;
  description.json_ = json;
  description.actionName_ = members.Text("action", true);
  description.commandName_ = members.Text("command");
  description.first_ = members.Text("first");
  for (const auto& each : members.Array("settings", true)) {
    Setting setting = ReadSetting(each.toObject(), origin);
    if (description.Find(setting.key) != nullptr)
      members.Refuse(QStringLiteral("'%1' is there twice").arg(setting.key));
    description.settings_.push_back(std::move(setting));
  }
  members.RefuseRest();
  if (!description.commandName_.isEmpty() && !CanBeCommand(description.commandName_)) {
    members.Refuse(QStringLiteral("'%1' cannot be a command's name").arg(description.commandName_));
  }
  if (!description.first_.isEmpty() && description.First() == nullptr) {
    members.Refuse(QStringLiteral("'first' names no setting"));
  }
  return description;
}

const SettingsDescription::Setting* SettingsDescription::Find(const QString& key) const {
  for (const Setting& setting : settings_) {
    if (setting.key == key) return &setting;
  }
  return nullptr;
}

QStringList SettingsDescription::Keys() const {
  QStringList keys;
  for (const Setting& setting : settings_) keys += setting.key;
  return keys;
}

QString SettingsDescription::HelpText() const {
  QString text = QStringLiteral("Settings of '%1' (--set KEY=VALUE):\n").arg(actionName_);
  for (const Setting& setting : settings_) {
    text += QStringLiteral("  %1=%2\n      %3%4: %5\n")
                .arg(setting.key, setting.TypeName(), setting.title,
                     setting.required ? QStringLiteral(" (required)") : QString(), setting.help);
    if (setting.standard) text += QStringLiteral("      Default: %1\n").arg(*setting.standard);
    if (!setting.empty.isEmpty()) text += QStringLiteral("      --clear %1: %2\n").arg(setting.key, setting.empty);
  }
  return text;
}
