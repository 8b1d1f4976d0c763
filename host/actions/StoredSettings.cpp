// SPDX-License-Identifier: Apache-2.0
#include "host/actions/StoredSettings.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/base/CommandError.h"
#include "host/base/NamedInput.h"
#include "host/base/NativeName.h"
#include "utils/SettingsFile.h"

namespace {

[[noreturn]] void Refuse(const QString& source, const QString& why) {
  throw CommandError(kExitUsage, QStringLiteral("Cannot use the settings '%1': %2.").arg(source, why));
}

bool IsJson(const QByteArray& text) {
  return text.trimmed().startsWith('{');
}

QMap<QString, QVariant> FromJson(const QByteArray& text, const QString& source) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(text, &error);
  if (!document.isObject()) {
    Refuse(source, QStringLiteral("they are not a JSON object (%1)").arg(error.errorString()));
  }
  return document.object().toVariantMap();
}

QMap<QString, QVariant> FromFile(const QString& file) {
  const QByteArray text =
      QByteArray::fromStdString(NamedInput::ReadAll(NativeName::ToBytes(file).toStdString(), "settings file"));
  if (file == QLatin1String("-") || IsJson(text)) return FromJson(text, file);
  const QVariant values = SettingsFile(file).Values().value(QStringLiteral("ToolSettings"));
  if (values.userType() != QMetaType::QVariantMap || values.toMap().isEmpty()) {
    Refuse(file, QStringLiteral("the file is neither a tool settings file (.tsf) nor JSON"));
  }
  return values.toMap();
}

}  // namespace

StoredSettings StoredSettings::Read(const QString& source) {
  StoredSettings stored;
  stored.values = IsJson(source.toUtf8()) ? FromJson(source.toUtf8(), source) : FromFile(source);
  stored.actionName = stored.values.value(QStringLiteral("ActionName")).toString();
  for (const QString& key : KeysOfDialogs()) stored.values.remove(key);
  return stored;
}

const QStringList& StoredSettings::KeysOfDialogs() {
  static const QStringList keys{QStringLiteral("ActionName"), QStringLiteral("ActionListName"),
                                QStringLiteral("ActionListCategory"), QStringLiteral("ActionListOverwrite"),
                                QStringLiteral("CollectionName")};
  return keys;
}
