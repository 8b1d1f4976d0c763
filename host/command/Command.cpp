// SPDX-License-Identifier: Apache-2.0
#include "host/command/Command.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QSet>
#include <QVariant>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NamedInput.h"
#include "host/base/NativeName.h"
#include "utils/CUtils.h"

namespace {

std::string_view View(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

Command::Command(const QString& name, const QString& summary) : name_(name), summary_(summary) {
  parser_.setApplicationDescription(summary);
  parser_.addOption(HelpOption());
}

QCommandLineOption Command::HelpOption() {
  return QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Prints this help."));
}

void Command::Parse(const QStringList& arguments) {
  // The parser skips the first argument as the program's name.
  if (!parser_.parse(QStringList{name_} + arguments)) throw CommandError(kExitUsage, parser_.errorText());
  if (OnlyHelps()) return;
  RefuseRepeatedOptions();
  Check();
}

int Command::Run() {
  if (!OnlyHelps()) return Execute();
  QString help = parser_.helpText();
  // The parser names the program; the user typed a command as well.
  const int end = help.indexOf(QLatin1String(" [options]"));
  if (end >= 0) help.insert(end, QLatin1Char(' ') + name_);
  return Console::Print(help) ? kExitDone : kExitSomeFailed;
}

void Command::PrepareWindowSystem() const {
  const bool display = qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  if (!display && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
}

void Command::RefuseRepeatedOptions() const {
  QSet<QString> seen;
  for (const QString& option : parser_.optionNames()) {
    if (seen.contains(option) && !repeatable_.contains(option)) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--%1' is given twice.").arg(option));
    }
    seen += option;
  }
}

void Command::AddOption(const QString& name, const QString& description, const QString& value) {
  parser_.addOption(QCommandLineOption(name, description, value));
}

QByteArray Command::BytesOf(const char* name) const {
  return NativeName::ToBytes(Value(name));
}

int Command::Number(const char* name, int fallback, int least, int most) const {
  if (!IsSet(name)) return fallback;
  bool valid = false;
  const int number = Value(name).toInt(&valid);
  if (!valid || number < least || number > most) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--%1' takes a whole number from %2 to %3.")
                                       .arg(QLatin1String(name))
                                       .arg(least)
                                       .arg(most));
  }
  return number;
}

void Command::Exclude(const char* one, const char* other) const {
  if (IsSet(one) && IsSet(other)) {
    throw CommandError(
        kExitUsage,
        QStringLiteral("Options '--%1' and '--%2' exclude each other.").arg(QLatin1String(one), QLatin1String(other)));
  }
}

void Command::RefuseArguments() const {
  const QStringList arguments = parser_.positionalArguments();
  if (!arguments.isEmpty()) {
    throw CommandError(kExitUsage, QStringLiteral("Unexpected argument '%1'.").arg(arguments.constFirst()));
  }
}

void Command::AddToolsOption() {
  AddOption(QStringLiteral("tools-dir"),
            QStringLiteral("Folder of the action plug-ins (default: the installed Tools folders, then ./Tools)."),
            QStringLiteral("DIR"));
}

QStringList Command::ToolsFolders() const {
  if (IsSet("tools-dir")) {
    const QString folder = Value("tools-dir");
    if (!QFileInfo(folder).isDir()) {
      throw CommandError(kExitNotLoaded, QStringLiteral("There is no folder '%1' of plug-ins.").arg(folder));
    }
    return {folder};
  }
  const QString prefix = QCoreApplication::applicationDirPath() + QStringLiteral("/..");
  // Beside a program in /usr, what "cmake --install" put into /usr/local.
  return {prefix + QStringLiteral("/lib/vorlane/Tools"), prefix + QStringLiteral("/local/lib/vorlane/Tools"),
          CUtils::GetActionFolder()};
}

void Command::AddLibraryOption() {
  AddOption(QStringLiteral("pdf-library"), QStringLiteral("The PDF library's file (default: the installed one)."),
            QStringLiteral("PATH"));
}

std::wstring Command::LibraryFile() const {
  if (!IsSet("pdf-library")) return L"HalvexPDFLibraryCPDylib1311.dylib";
  QByteArray path = BytesOf("pdf-library");
  // The dynamic loader looks for a bare name in its own folders only; here the user names a file.
  if (!path.contains('/') && access(path.constData(), F_OK) == 0) path.prepend("./");
  return NativeName::ToUnitPerByte(View(path));
}

void Command::AddPasswordOptions() {
  AddOption(QStringLiteral("password"), QStringLiteral("Password of encrypted documents (other users can see it)."),
            QStringLiteral("PASSWORD"));
  AddOption(QStringLiteral("password-file"), QStringLiteral("File whose first line is the password."),
            QStringLiteral("FILE"));
}

std::wstring Command::Password() const {
  if (!IsSet("password-file")) return NativeName::ToWide(View(BytesOf("password")));
  std::string line = NamedInput::ReadLine(BytesOf("password-file").toStdString(), "password file");
  while (!line.empty() && line.back() == '\r') line.pop_back();
  return NativeName::ToWide(line);
}

void Command::AddActionOptions() {
  AddOption(QStringLiteral("action"), QStringLiteral("The action's name, as 'actions' shows it."),
            QStringLiteral("NAME"));
  AddOption(QStringLiteral("set"), QStringLiteral("A setting of the action; may be repeated."),
            QStringLiteral("KEY=VALUE"));
  AllowRepeated("set");
}

QMap<QString, QVariant> Command::Settings() const {
  QMap<QString, QVariant> settings;
  for (const QString& pair : parser_.values(QStringLiteral("set"))) {
    const int equals = pair.indexOf(QLatin1Char('='));
    if (equals < 1) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--set' takes KEY=VALUE, not '%1'.").arg(pair));
    }
    const QString key = pair.left(equals);
    if (settings.contains(key)) {
      throw CommandError(kExitUsage, QStringLiteral("The setting '%1' is given twice.").arg(key));
    }
    settings.insert(key, pair.mid(equals + 1));
  }
  return settings;
}
