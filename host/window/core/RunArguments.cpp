// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RunArguments.h"

#include <QStandardPaths>

#include "host/actions/SettingsArguments.h"
#include "host/base/ShellLine.h"
#include "host/window/core/RunnerProcess.h"

namespace {

// Systems take about two million bytes of arguments; what is printed by the shell itself has no limit.
constexpr int kMostCharacters = 500000;

QStringList ChosenArguments(const ActionChoice& action) {
  switch (action.kind) {
    case ActionChoice::Kind::kAction:
      return SettingsArguments(action.actionName, action.settings);
    case ActionChoice::Kind::kList:
      return {QStringLiteral("run"), QStringLiteral("--list"), action.file};
    case ActionChoice::Kind::kSettingsFile:
      return {QStringLiteral("run"), QStringLiteral("--settings"), action.file};
    case ActionChoice::Kind::kNone:
      break;
  }
  return {QStringLiteral("run")};
}

QStringList OutputArguments(const OutputChoice& output) {
  QStringList arguments;
  if (!output.inPlace) {
    arguments += QStringLiteral("--output-dir=") + output.folder;
  } else {
    arguments += QStringLiteral("--in-place");
    if (!output.backupSuffix.isEmpty()) arguments += QStringLiteral("--backup=") + output.backupSuffix;
  }
  if (output.allowBreakingSignatures) arguments += QStringLiteral("--allow-breaking-signatures");
  return arguments;
}

// By its name where the shell finds this very program by it.
QString ProgramWord() {
  const QString name = QStringLiteral("vorlane-run");
  return QStandardPaths::findExecutable(name) == RunnerProcess::ProgramFile() ? name : RunnerProcess::ProgramFile();
}

}  // namespace

QStringList RunArguments(const ActionChoice& action, const OutputChoice& output, RunKind kind) {
  QStringList arguments = ChosenArguments(action) + OutputArguments(output);
  if (kind == RunKind::kDryRun) arguments += QStringLiteral("--dry-run");
  return arguments + QStringList{QStringLiteral("--report"), QStringLiteral("-")};
}

QString CommandText(const ActionChoice& action, const OutputChoice& output, const QStringList& files) {
  QStringList words = QStringList(ProgramWord()) + ChosenArguments(action) + OutputArguments(output);
  if (!output.passwords.isEmpty()) words += {QStringLiteral("--password-file"), QStringLiteral("/dev/tty")};
  const QString names = ShellLine(files);
  if (names.size() <= kMostCharacters) return ShellLine(words) + QStringLiteral(" -- ") + names;
  return QStringLiteral("printf '%s\\0' ") + names + QStringLiteral(" | ") +
         ShellLine(words + QStringList{QStringLiteral("--files-from"), QStringLiteral("-")});
}
