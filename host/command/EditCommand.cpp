// SPDX-License-Identifier: Apache-2.0
#include "host/command/EditCommand.h"

#include <climits>
#include <memory>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/actions/SettingsArguments.h"
#include "host/actions/SettingsDescription.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NativeName.h"
#include "host/base/PdfLibrary.h"
#include "host/base/ShellLine.h"
#include "host/base/WindowSystem.h"
#include "host/command/ActionCommand.h"
#include "host/files/HostFolders.h"
#include "plugin/DialogLoadStruct.h"

namespace {

// The name of the parent window, by which dialogs know their context; empty for a stand-alone dialog.
QString ParentName(const QString& context) {
  if (context == QLatin1String("standalone")) return {};
  return context == QLatin1String("preview") ? QStringLiteral("VorlanePreviewClass") : QStringLiteral("VorlaneClass");
}

// The action lists of the sequence folder with what is in them.
QMap<QString, QByteArray> ReadLists() {
  QMap<QString, QByteArray> lists;
  for (const QString& path : ActionListFile::All()) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) lists.insert(path, file.readAll());
  }
  return lists;
}

// The dialog is rejected after it has added its settings to a list; only the folder shows that.
QStringList ChangedLists(const QMap<QString, QByteArray>& before) {
  QStringList changed;
  const QMap<QString, QByteArray> after = ReadLists();
  for (auto list = after.begin(); list != after.end(); ++list) {
    if (!before.contains(list.key()) || before.value(list.key()) != list.value()) changed += list.key();
  }
  return changed;
}

std::unique_ptr<PdfLibrary::Wrapper> OpenDocument(const std::wstring& libraryFile, const std::string& file,
                                                  const std::vector<std::wstring>& passwords) {
  std::unique_ptr<PdfLibrary::Wrapper> library = PdfLibrary::Open(libraryFile);
  const std::string problem = PdfLibrary::LoadDocument(*library, file, passwords);
  if (!problem.empty()) {
    throw CommandError(
        kExitNotLoaded,
        QStringLiteral("Cannot open '%1': %2").arg(NativeName::ToText(file), QString::fromStdString(problem)));
  }
  return library;
}

}  // namespace

EditCommand::EditCommand()
    : SettingsCommand(QStringLiteral("edit"),
                      QStringLiteral("Opens an action's settings dialog and prints the settings.")) {
  AddActionOption();
  AddSettingsOptions();
  AddOption(QStringLiteral("document"), QStringLiteral("The document that is open in the host."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("context"), QStringLiteral("main (default), preview or standalone: where it opens from."),
            QStringLiteral("CONTEXT"));
  AddOption(QStringLiteral("list"), QStringLiteral("Edits the settings of an action in this list."),
            QStringLiteral("NAME|FILE.xqq"));
  AddOption(QStringLiteral("index"), QStringLiteral("The action's number in the list, from 0."), QStringLiteral("N"));
  AddOption(QStringLiteral("print-command"), QStringLiteral("Prints the command line that does what was set."));
  AddOption(QStringLiteral("apply"), QStringLiteral("Does with the document what was set, in place."));
  AddToolsOption();
  AddLibraryOption();
  AddPasswordOptions();
  AddExample(QStringLiteral("edit --action \"Set Base URL\" --document manual.pdf --apply"));
  AddExample(QStringLiteral("edit --action \"Set Base URL\" --print-command"));
  AddExample(QStringLiteral("edit --list \"My List\" --index 0"));
}

void EditCommand::PrepareWindowSystem() const {
  // Nobody could press a button of a dialog that is not on a screen.
  if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY") &&
      !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    throw CommandError(kExitNotLoaded, QStringLiteral("There is no display to show the dialog on."));
  }
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  // The dialogs' style sheets make Qt warn many times about what is intended.
  if (!qEnvironmentVariableIsSet("QT_LOGGING_RULES")) {
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
  }
}

void EditCommand::Check() {
  CheckPasswordOptions();
  for (const char* option : {"action", "set", "clear", "settings", "apply"}) Exclude("list", option);
  Exclude("apply", "print-command");
  if (IsSet("apply") && !IsSet("document")) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--apply' needs '--document'."));
  }
  CheckStandardInput({"password-file", "settings"});
  if (!IsSet("list") && !IsSet("action") && !IsSet("settings")) {
    throw CommandError(kExitUsage, QStringLiteral("Either '--action' or '--list' is needed."));
  }
  if (IsSet("list") != IsSet("index")) {
    throw CommandError(kExitUsage, QStringLiteral("Options '--list' and '--index' need each other."));
  }
  index_ = Number("index", -1, 0, INT_MAX);
  CheckSettingsOptions();
  const QStringList contexts{QStringLiteral("main"), QStringLiteral("preview"), QStringLiteral("standalone")};
  if (IsSet("context") && !contexts.contains(Value("context"))) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--context' takes main, preview or standalone."));
  }
  RefuseArguments();
}

EditCommand::Session EditCommand::Begin(ActionCatalog& catalog) const {
  Session session;
  if (IsSet("list")) {
    session.listFile = ActionList::Locate(Value("list"));
    const ActionListFile list = ActionList::Read(session.listFile);
    if (index_ >= static_cast<int>(list.entries.size())) {
      throw CommandError(kExitNotLoaded,
                         QStringLiteral("The action list '%1' has no action %2.").arg(session.listFile).arg(index_));
    }
    const ActionListFile::Entry& entry = list.entries[static_cast<std::size_t>(index_)];
    session.action = &catalog.Get(entry.actionName);
    session.settings = entry.settings;
    return session;
  }
  const StoredSettings stored = Stored();
  session.action = &catalog.Get(ActionNameWith(stored));
  session.settings = StartSettings(SettingsDescription::Of(session.action->GetActionName()), Given(stored));
  return session;
}

// Whether the dialog was accepted.
bool EditCommand::ShowDialog(Session& session) const {
  std::unique_ptr<PdfLibrary::Wrapper> document;
  if (IsSet("document")) document = OpenDocument(LibraryFile(), BytesOf("document").toStdString(), Passwords());
  // The user edits the settings that were stored or given. Without any, the dialog starts with the document's value.
  DialogLoadStruct info{};
  info.document = document.get();
  info.settings = &session.settings;
  info.skipDocumentValue = !session.settings.isEmpty() || !document;
  return WindowSystem::Get().ShowDialog(*session.action, ParentName(Value("context")), info) == 1;
}

int EditCommand::Execute() {
  SetupHostFolders();
  ActionCatalog catalog(ToolsFolders());
  Session session = Begin(catalog);
  const QMap<QString, QByteArray> lists = ReadLists();
  if (ShowDialog(session)) return Finish(session);
  const QStringList changed = ChangedLists(lists);
  if (changed.isEmpty()) return kExitSomeFailed;
  return Console::Print(changed.join(QLatin1Char('\n')) + QLatin1Char('\n')) ? kExitDone : kExitSomeFailed;
}

int EditCommand::Finish(const Session& session) const {
  if (!session.listFile.isEmpty()) ActionList::StoreSettings(session.listFile, index_, session.settings);
  const QStringList arguments = SettingsArguments(session.action->GetActionName(), session.settings);
  if (IsSet("apply")) return Apply(arguments);
  if (!IsSet("print-command")) {
    const QJsonObject json = QJsonObject::fromVariantMap(session.settings);
    return Console::Print(QJsonDocument(json).toJson()) ? kExitDone : kExitSomeFailed;
  }
  QStringList words = QStringList(QStringLiteral("vorlane-run")) + arguments;
  if (IsSet("tools-dir")) words += {QStringLiteral("--tools-dir"), Value("tools-dir")};
  words += QStringLiteral("--in-place");
  const QString files =
      IsSet("document") ? ShellLine({QStringLiteral("--"), Value("document")}) : QStringLiteral("FILE...");
  return Console::Print(ShellLine(words) + QLatin1Char(' ') + files + QLatin1Char('\n')) ? kExitDone : kExitSomeFailed;
}

int EditCommand::Apply(const QStringList& arguments) const {
  QStringList rest = arguments.mid(1) + QStringList{QStringLiteral("--in-place"), QStringLiteral("--jobs=0")};
  for (const char* option : {"tools-dir", "pdf-library", "password-file"}) {
    if (IsSet(option)) rest += QStringLiteral("--%1=%2").arg(QLatin1String(option), Value(option));
  }
  for (const QString& password : parser_.values(QStringLiteral("password"))) {
    rest += QStringLiteral("--password=") + password;
  }
  rest += {QStringLiteral("--"), Value("document")};
  const bool isRun = arguments.constFirst() == QLatin1String("run");
  const auto command = isRun ? std::make_unique<RunCommand>()
                             : std::unique_ptr<RunCommand>(new ActionCommand(arguments.constFirst(), {}));
  command->Parse(rest);
  return command->Run();
}
