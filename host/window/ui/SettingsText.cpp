// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/SettingsText.h"

#include <QCoreApplication>
#include <QUrl>

#include "host/actions/SettingsDescription.h"
#include "host/base/CommandError.h"
#include "utils/CActionUtils.h"

namespace {

using Setting = SettingsDescription::Setting;

// For lupdate: names and texts of the plug-ins, which are looked up by their English text.
[[maybe_unused]] constexpr const char* kActionTexts[] = {
    QT_TRANSLATE_NOOP("ActionText", "Set Base URL"),
    QT_TRANSLATE_NOOP("ActionText", "Make Links Absolute"),
    QT_TRANSLATE_NOOP("ActionText", "Document Properties"),
    QT_TRANSLATE_NOOP("ActionText", "Base URL"),
    QT_TRANSLATE_NOOP("ActionText", "removes the base URL"),
    QT_TRANSLATE_NOOP("ActionText", "uses the document's own base URL"),
    QT_TRANSLATE_NOOP("ActionText", "Remove the document's base URL afterwards"),
};

// Nothing when the plug-in does not describe its settings, or does so wrongly.
std::optional<SettingsDescription> DescriptionOf(const QString& actionName) {
  try {
    return SettingsDescription::Of(actionName);
  } catch (const CommandError&) {
    return std::nullopt;
  }
}

QString KeyOfLinks(const Setting& setting) {
  return QStringLiteral("Links_") + setting.key;
}

QString Sentence(QString text) {
  if (!text.isEmpty()) text[0] = text[0].toUpper();
  return text;
}

// Empty for what need not be said.
QString Describe(const Setting& setting, const QVariant& value) {
  if (setting.type == SettingsDescription::Type::kSwitch) return value.toBool() ? ActionText(setting.title) : QString();
  if (!value.toString().isEmpty()) return ActionText(setting.title) + QStringLiteral(": ") + value.toString();
  return Sentence(ActionText(setting.empty));
}

// A last part with a dot is the name of a page.
bool LacksSlash(const QString& address) {
  const QUrl url(address);
  return url.isValid() && !url.host().isEmpty() && !url.hasQuery() && !url.hasFragment() &&
         !address.endsWith(QLatin1Char('/')) && !url.fileName().contains(QLatin1Char('.'));
}

}  // namespace

QString ActionText(const QString& text) {
  return QCoreApplication::translate("ActionText", text.toUtf8().constData());
}

QString DescribeSettings(const QString& actionName, const QMap<QString, QVariant>& settings) {
  const std::optional<SettingsDescription> description = DescriptionOf(actionName);
  QStringList lines;
  if (description) {
    for (const Setting& setting : description->Settings()) {
      const QString line = Describe(setting, settings.value(setting.key));
      if (!line.isEmpty()) lines += line;
    }
  } else {
    for (auto each = settings.begin(); each != settings.end(); ++each) {
      if (each.value().canConvert<QString>()) lines += each.key() + QStringLiteral(": ") + each.value().toString();
    }
  }
  return lines.join(QLatin1Char('\n'));
}

std::optional<QMap<QString, QVariant>> WithSlash(const QString& actionName, const QMap<QString, QVariant>& settings) {
  const std::optional<SettingsDescription> description = DescriptionOf(actionName);
  if (!description) return std::nullopt;
  QMap<QString, QVariant> fixed = settings;
  for (const Setting& setting : description->Settings()) {
    const QString value = settings.value(setting.key).toString();
    if (setting.use != UrlUse::kOther && LacksSlash(value)) fixed.insert(setting.key, value + QLatin1Char('/'));
  }
  return fixed != settings ? std::make_optional(fixed) : std::nullopt;
}

QIcon ActionIcon(const QString& fileNames) {
  const auto pixmap = [&fileNames](int section, int size) {
    return CActionUtils::GetIconForTool(fileNames.section(QLatin1Char('#'), section, section)).pixmap(size, size);
  };
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 128}) {
    icon.addPixmap(pixmap(0, size), QIcon::Normal);
    icon.addPixmap(pixmap(1, size), QIcon::Selected);
  }
  return icon;
}

QStringList RememberedLinks(const QString& actionName) {
  const std::optional<SettingsDescription> description = DescriptionOf(actionName);
  if (!description) return {};
  const Setting* link = nullptr;
  for (const Setting& setting : description->Settings()) {
    if (setting.type != SettingsDescription::Type::kUrl) continue;
    if (link != nullptr) return {};
    link = &setting;
  }
  return link != nullptr ? CActionUtils::GetLastEnteredLinks(KeyOfLinks(*link)) : QStringList();
}

void RememberLinks(const QString& actionName, const QMap<QString, QVariant>& settings) {
  const std::optional<SettingsDescription> description = DescriptionOf(actionName);
  if (!description) return;
  for (const Setting& setting : description->Settings()) {
    const QString link = settings.value(setting.key).toString();
    if (setting.type == SettingsDescription::Type::kUrl && !link.isEmpty()) {
      CActionUtils::SaveLastEnteredLink(KeyOfLinks(setting), link);
    }
  }
}
