// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QIcon>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// A name or text of an action in the user's language: translated are those of the actions that come with this program.
QString ActionText(const QString& text);

// An action's settings in words, by the action's own description of them: "Base URL: https://example.org/". Each
// setting is one line; the plug-in has to be loaded.
QString DescribeSettings(const QString& actionName, const QMap<QString, QVariant>& settings);

// The settings with a "/" at the end of each base URL that means a folder and lacks it; nothing when none does.
std::optional<QMap<QString, QVariant>> WithSlash(const QString& actionName, const QMap<QString, QVariant>& settings);

// The icon of an action from its GetDefaultIcon(); the normal and the selected image.
QIcon ActionIcon(const QString& fileNames);

// The remembered links of an action that has exactly one address among its settings, newest first.
QStringList RememberedLinks(const QString& actionName);
// Remembers the addresses among the settings.
void RememberLinks(const QString& actionName, const QMap<QString, QVariant>& settings);
