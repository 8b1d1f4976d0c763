// SPDX-License-Identifier: Apache-2.0
#include "host/command/EditCommand.h"

#include <climits>
#include <memory>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QWidget>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NativeName.h"
#include "host/base/PdfLibrary.h"
#include "host/files/HostFolders.h"
#include "plugin/DialogLoadStruct.h"

namespace {

// The window by whose object name dialogs know where they are shown; none for a dialog of its own.
std::unique_ptr<QWidget> MakeParent(const QString& context) {
  if (context == QLatin1String("standalone")) return nullptr;
  auto parent = std::make_unique<QWidget>();
  const bool isMain = context == QLatin1String("main");
  parent->setObjectName(isMain ? QStringLiteral("VorlaneClass") : QStringLiteral("VorlanePreviewClass"));
  parent->resize(1000, 700);
  return parent;
}

std::unique_ptr<PdfLibrary::Wrapper> OpenDocument(const std::wstring& libraryFile, const std::string& file,
                                                  const std::wstring& password) {
  std::unique_ptr<PdfLibrary::Wrapper> library = PdfLibrary::Open(libraryFile);
  const std::string problem = PdfLibrary::LoadDocument(*library, file, password);
  if (!problem.empty()) {
    throw CommandError(
        kExitNotLoaded,
        QStringLiteral("Cannot open '%1': %2").arg(NativeName::ToText(file), QString::fromStdString(problem)));
  }
  return library;
}

}  // namespace

EditCommand::EditCommand()
    : Command(QStringLiteral("edit"), QStringLiteral("Opens an action's settings dialog and prints the settings.")) {
  AddActionOptions();
  AddOption(QStringLiteral("document"), QStringLiteral("The document that is open in the host."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("context"), QStringLiteral("main (default), preview or standalone: where it opens from."),
            QStringLiteral("CONTEXT"));
  AddOption(QStringLiteral("list"), QStringLiteral("Edits the settings of an action in this list."),
            QStringLiteral("NAME|FILE.xqq"));
  AddOption(QStringLiteral("index"), QStringLiteral("The action's number in the list, from 0."), QStringLiteral("N"));
  AddToolsOption();
  AddLibraryOption();
  AddPasswordOptions();
}

void EditCommand::PrepareWindowSystem() const {
  // Nobody could press a button of a dialog that is not on a screen.
  if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY") &&
      !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    throw CommandError(kExitNotLoaded, QStringLiteral("There is no display to show the dialog on."));
  }
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  // The dialogs' style sheets make Qt warn many times over about things that are meant so.
  if (!qEnvironmentVariableIsSet("QT_LOGGING_RULES")) {
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
  }
}

void EditCommand::Check() {
  CheckPasswordOptions();
  Exclude("list", "set");
  Exclude("list", "action");
  if (!IsSet("list") && !IsSet("action")) {
    throw CommandError(kExitUsage, QStringLiteral("Either '--action' or '--list' is needed."));
  }
  if (IsSet("list") != IsSet("index")) {
    throw CommandError(kExitUsage, QStringLiteral("Options '--list' and '--index' need each other."));
  }
  index_ = Number("index", -1, 0, INT_MAX);
  Settings();
  const QStringList contexts{QStringLiteral("main"), QStringLiteral("preview"), QStringLiteral("standalone")};
  if (IsSet("context") && !contexts.contains(Value("context"))) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--context' takes main, preview or standalone."));
  }
  RefuseArguments();
}

int EditCommand::Execute() {
  SetupHostFolders();
  QString listFile;
  QString actionName = Value("action");
  QMap<QString, QVariant> settings = Settings();
  if (IsSet("list")) {
    listFile = ActionList::Locate(Value("list"));
    const ActionListFile list = ActionList::Read(listFile);
    if (index_ >= static_cast<int>(list.entries.size())) {
      throw CommandError(kExitNotLoaded,
                         QStringLiteral("The action list '%1' has no action %2.").arg(listFile).arg(index_));
    }
    const ActionListFile::Entry& entry = list.entries[static_cast<std::size_t>(index_)];
    actionName = entry.actionName;
    settings = entry.settings;
  }

  ActionCatalog catalog(ToolsFolders());
  CActionInterface& action = catalog.Get(actionName);
  std::unique_ptr<PdfLibrary::Wrapper> document;
  if (IsSet("document")) document = OpenDocument(LibraryFile(), BytesOf("document").toStdString(), Password());
  const std::unique_ptr<QWidget> parent = MakeParent(IsSet("context") ? Value("context") : QStringLiteral("main"));
  if (parent) parent->show();

  // Settings that were stored or given are what the user edits; only from nothing does the document's value come in.
  DialogLoadStruct info{};
  info.document = document.get();
  info.settings = &settings;
  info.skipDocumentValue = !settings.isEmpty() || !document;
  if (action.ShowDialogProc(parent.get(), &info) != 1) return kExitSomeFailed;

  if (!listFile.isEmpty()) ActionList::StoreSettings(listFile, index_, settings);
  const QJsonObject json = QJsonObject::fromVariantMap(settings);
  return Console::Print(QJsonDocument(json).toJson()) ? kExitDone : kExitSomeFailed;
}
