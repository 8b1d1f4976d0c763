// SPDX-License-Identifier: Apache-2.0
#include "host/command/Command.h"

#include <unistd.h>

#include <QFileInfo>
#include <QSet>

#include "host/actions/ToolsFolders.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NamedInput.h"
#include "host/base/NativeName.h"
#include "host/base/Suggestion.h"
#include "host/files/FolderWalk.h"

namespace {

std::string_view View(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QStringList OptionsAsTyped(QStringList options) {
  for (QString& option : options) option.prepend(QStringLiteral("--"));
  return options;
}

void WarnOfMissing(const QStringList& folders) {
  static QStringList named;  // a command may ask for its folders more than once
  for (const QString& folder : folders) {
    if (named.contains(folder) || QFileInfo(folder).isDir()) continue;
    named += folder;
    Console::Error(QStringLiteral("Warning: VORLANE_TOOLS_PATH names '%1', which is not a folder.").arg(folder));
  }
}

}  // namespace

Command::Command(const QString& name, const QString& summary) : name_(name), summary_(summary) {
  parser_.setApplicationDescription(summary);
  options_ += QStringLiteral("help");
  parser_.addOption(HelpOption());
}

QCommandLineOption Command::HelpOption() {
  return QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Prints this help."));
}

void Command::Parse(const QStringList& arguments) {
  // The parser skips the first argument as the program's name.
  const bool parsed = parser_.parse(QStringList{name_} + arguments);
  // A name such as "-chapter.pdf" holds the letter of the help option.
  const bool asksForHelp = arguments.contains(QLatin1String("-h")) || arguments.contains(QLatin1String("--help"));
  if (!asksForHelp) RefuseDashedNames(arguments);
  if (!parsed) throw CommandError(kExitUsage, ParsingError());
  if (OnlyHelps()) return;
  RefuseRepeatedOptions();
  Check();
}

// The parser would read "-dash.pdf" as a row of short options, or as one with its value.
void Command::RefuseDashedNames(const QStringList& arguments) const {
  for (int i = 0; i < arguments.size() && arguments[i] != QLatin1String("--"); ++i) {
    const QString& argument = arguments[i];
    if (!argument.startsWith(QLatin1Char('-'))) continue;
    const bool isShort = !argument.startsWith(QLatin1String("--"));
    const bool isLongName = !isShort && !argument.contains(QLatin1Char('=')) &&
                            argument.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
    if ((isShort && argument.size() > 2) || isLongName) {
      throw CommandError(kExitUsage, QStringLiteral("'%1' is not an option. A file whose name begins with \"-\" needs "
                                                    "\"./\" before it, or \"--\" before all files.")
                                         .arg(argument));
    }
    if (valued_.contains(LongName(argument.mid(isShort ? 1 : 2)))) ++i;  // the next one is its value
  }
}

QString Command::ParsingError() const {
  const QStringList unknown = parser_.unknownOptionNames();
  if (unknown.isEmpty()) return parser_.errorText();
  const QString typed =
      (unknown.constFirst().size() > 1 ? QStringLiteral("--") : QStringLiteral("-")) + unknown.constFirst();
  return QStringLiteral("Unknown option '%1'.%2").arg(typed, Suggestion(typed, OptionsAsTyped(options_)));
}

QString Command::HelpText() const {
  QString help = parser_.helpText();
  // The parser names the program; the user typed a command as well.
  const int end = help.indexOf(QLatin1String(" [options]"));
  if (end >= 0) help.insert(end, QLatin1Char(' ') + name_);
  if (!examples_.isEmpty()) help += QStringLiteral("\nExamples:\n");
  for (const QString& example : examples_) help += QStringLiteral("  vorlane-run %1\n").arg(example);
  return help;
}

int Command::Run() {
  if (!OnlyHelps()) return Execute();
  return Console::Print(HelpText()) ? kExitDone : kExitSomeFailed;
}

void Command::PrepareWindowSystem() const {
  const bool display = qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  if (!display && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
}

// An option may have been given by its short form.
QString Command::LongName(const QString& name) const {
  return shortForms_.value(name, name);
}

void Command::RefuseRepeatedOptions() const {
  QSet<QString> seen;
  for (const QString& name : parser_.optionNames()) {
    const QString option = LongName(name);
    if (seen.contains(option) && !repeatable_.contains(option)) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--%1' is given twice.").arg(option));
    }
    seen += option;
  }
}

void Command::AddOption(const QString& name, const QString& description, const QString& value) {
  const QStringList names = name.split(QLatin1Char('|'));
  options_ += names.constLast();
  if (!value.isEmpty()) valued_ += names.constLast();
  if (names.size() > 1) shortForms_.insert(names.constFirst(), names.constLast());
  parser_.addOption(QCommandLineOption(names, description, value));
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

void Command::RefuseEmpty(std::initializer_list<const char*> names) const {
  for (const char* name : names) {
    if (IsSet(name) && Value(name).isEmpty()) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--%1' needs a name.").arg(QLatin1String(name)));
    }
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
            QStringLiteral("Folder of the action plug-ins, in place of the installed Tools folders and those of "
                           "VORLANE_TOOLS_PATH."),
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
  const QStringList others = ToolsFoldersOfEnvironment();
  if (!IsSet("quiet")) WarnOfMissing(others);
  return InstalledToolsFolders() + others;
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
  AddOption(QStringLiteral("password"),
            QStringLiteral("Password of encrypted documents (other users can see it); may be repeated."),
            QStringLiteral("PASSWORD"));
  AllowRepeated("password");
  AddOption(QStringLiteral("password-file"),
            QStringLiteral("File, or '-', with a password on each line; they are tried in turn."),
            QStringLiteral("FILE"));
}

std::vector<std::wstring> Command::Passwords() const {
  std::vector<std::wstring> passwords;
  for (const QString& password : parser_.values(QStringLiteral("password"))) {
    const QByteArray bytes = NativeName::ToBytes(password);
    if (IsPdfName(View(bytes)) && access(bytes.constData(), F_OK) == 0) {
      throw CommandError(kExitUsage,
                         QStringLiteral("Option '--password' takes a password, but '%1' is a file. If it is meant, use "
                                        "'--password-file'.")
                             .arg(password));
    }
    passwords.push_back(NativeName::ToWide(View(bytes)));
  }
  if (!IsSet("password-file")) return passwords;
  constexpr std::size_t kMostBytes = 64 * 1024;
  const std::string content = NamedInput::ReadAll(BytesOf("password-file").toStdString(), "password file", kMostBytes);
  if (content.find('\0') != std::string::npos) {
    throw CommandError(
        kExitUsage,
        QStringLiteral("The password file '%1' is not a text in UTF-8: it has NUL bytes.").arg(Value("password-file")));
  }
  for (QByteArray line : QByteArray::fromStdString(content).split('\n')) {
    while (line.endsWith('\r')) line.chop(1);
    if (!line.isEmpty()) passwords.push_back(NativeName::ToWide(View(line)));
  }
  return passwords;
}

void Command::CheckStandardInput(const std::vector<const char*>& options) const {
  const char* reader = nullptr;
  for (const char* option : options) {
    if (!IsSet(option) || Value(option) != QLatin1String("-")) continue;
    if (reader != nullptr) {
      throw CommandError(kExitUsage, QStringLiteral("Options '--%1' and '--%2' cannot both read the standard input.")
                                         .arg(QLatin1String(reader), QLatin1String(option)));
    }
    reader = option;
  }
}
