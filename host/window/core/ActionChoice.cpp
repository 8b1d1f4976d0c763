// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/ActionChoice.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("ActionChoice", text);
}

QString ProblemOfOutput(const OutputChoice& output) {
  if (!output.inPlace) {
    if (output.folder.isEmpty()) return Tr(QT_TRANSLATE_NOOP("ActionChoice", "Choose a folder for the results first."));
    if (QFileInfo(output.folder).isAbsolute()) return {};
    return Tr(QT_TRANSLATE_NOOP("ActionChoice", "Give the folder for the results with its whole path."));
  }
  if (output.backupSuffix.contains(QLatin1Char('/'))) {
    return Tr(QT_TRANSLATE_NOOP("ActionChoice", "The ending of the backups cannot contain a slash."));
  }
  if (output.backupSuffix.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
    return Tr(QT_TRANSLATE_NOOP("ActionChoice",
                                "The ending of the backups cannot be \".pdf\": they would be taken for documents."));
  }
  return {};
}

}  // namespace

ActionChoice ActionChoice::Action(const QString& name, const QMap<QString, QVariant>& settings) {
  ActionChoice choice;
  choice.kind = Kind::kAction;
  choice.actionName = name;
  choice.settings = settings;
  return choice;
}

ActionChoice ActionChoice::List(const QString& file) {
  ActionChoice choice;
  choice.kind = Kind::kList;
  choice.file = QFileInfo(file).absoluteFilePath();
  return choice;
}

ActionChoice ActionChoice::SettingsFile(const QString& file) {
  ActionChoice choice = List(file);
  choice.kind = Kind::kSettingsFile;
  return choice;
}

bool ActionChoice::operator==(const ActionChoice& other) const {
  return kind == other.kind && actionName == other.actionName && settings == other.settings && file == other.file;
}

bool OutputChoice::operator==(const OutputChoice& other) const {
  return inPlace == other.inPlace && backupSuffix == other.backupSuffix && folder == other.folder &&
         allowBreakingSignatures == other.allowBreakingSignatures && passwords == other.passwords;
}

QString ProblemOf(const ActionChoice& action, const OutputChoice& output) {
  switch (action.kind) {
    case ActionChoice::Kind::kNone:
      return Tr(QT_TRANSLATE_NOOP("ActionChoice", "Choose what to do first."));
    case ActionChoice::Kind::kAction:
      break;
    case ActionChoice::Kind::kList:
    case ActionChoice::Kind::kSettingsFile:
      if (QFileInfo::exists(action.file)) break;
      return Tr(QT_TRANSLATE_NOOP("ActionChoice", "The file %1 is not there any more. Choose what to do again."))
          .arg(action.file);
  }
  return ProblemOfOutput(output);
}
