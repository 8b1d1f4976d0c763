// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/Choice.h"

#include <QFileInfo>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/actions/StoredSettings.h"
#include "host/base/CommandError.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/ui/SettingsText.h"

namespace {

bool HasSuffix(const QString& file, const char* suffix) {
  return QFileInfo(file).suffix().compare(QLatin1String(suffix), Qt::CaseInsensitive) == 0;
}

}  // namespace

bool Choices::IsListFile(const QString& file) {
  return HasSuffix(file, "xqq");
}

bool Choices::IsSettingsFile(const QString& file) {
  return HasSuffix(file, "tsf");
}

QIcon Choices::ListIcon() {
  return QIcon(QStringLiteral(":/Vorlane/Resources/PaneActionList_selected.png"));
}

QIcon Choices::SettingsFileIcon() {
  return QIcon(QStringLiteral(":/Vorlane/Resources/Collection.png"));
}

Choice Choices::OfAction(ActionCatalog& catalog, const QString& actionName, const QMap<QString, QVariant>& settings,
                         QString* problem, const QString& title, const QIcon& icon) {
  CActionInterface* const action = catalog.Find(actionName);
  if (action == nullptr) {
    *problem = tr("The action \"%1\" is not installed. Install the plug-in that has it, or choose another action.")
                   .arg(actionName);
    return {};
  }
  return {ActionChoice::Action(actionName, settings), title.isEmpty() ? ActionText(action->GetDisplayName()) : title,
          DescribeSettings(actionName, settings), icon.isNull() ? ActionIcon(action->GetDefaultIcon()) : icon,
          QString()};
}

Choice Choices::OfFile(ActionCatalog& catalog, const QString& file, QString* problem) {
  const QString path = QFileInfo(file).absoluteFilePath();
  try {
    if (!IsListFile(file)) {
      const StoredSettings stored = StoredSettings::Read(path);
      if (!stored.actionName.isEmpty()) {
        return OfAction(catalog, stored.actionName, stored.values, problem, QFileInfo(path).completeBaseName());
      }
      *problem = tr("The settings file %1 does not say which action its settings are for. Choose the action and enter "
                    "the settings again.")
                     .arg(path);
      return {};
    }
    const ActionListFile list = ActionList::Read(path);
    QStringList lines;
    for (const ActionListFile::Entry& entry : list.entries) {
      if (catalog.Find(entry.actionName) == nullptr) {
        *problem =
            tr("The action list \"%1\" needs the action \"%2\", which is not installed. Install the plug-in that "
               "has it.")
                .arg(list.name, entry.actionName);
        return {};
      }
      const QString settings = DescribeSettings(entry.actionName, entry.settings);
      lines += QStringLiteral("%1. %2").arg(lines.size() + 1).arg(ActionText(entry.actionName)) +
               (settings.isEmpty() ? QString() : QStringLiteral(" – ") + settings.simplified());
    }
    const QString title = list.name.isEmpty() ? QFileInfo(path).completeBaseName() : list.name;
    return {ActionChoice::List(path), title, lines.join(QLatin1Char('\n')), ListIcon(), QString()};
  } catch (const CommandError& error) {
    *problem = RecordTexts::PlainReason(error.Message());
    return {};
  }
}
