// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QTranslator>

#include "host/base/NativeName.h"
#include "host/files/HostFolders.h"
#include "host/window/ui/MainWindow.h"
#include "utils/CUtils.h"

namespace {

// Qt's own texts and the window's in the first of the user's languages that the window has. Both are in the same
// language, and one after English in the user's order is not taken.
void InstallTranslations(QApplication& application) {
  const QString texts = QStringLiteral(":/Vorlane/Translations/vorlane-actions_%1.qm");
  // English too has texts that depend on a number.
  for (const QString& name : QLocale().uiLanguages() + QStringList(QStringLiteral("en"))) {
    const QString language = name.section(QLatin1Char('-'), 0, 0);
    if (!QFile::exists(texts.arg(language))) continue;
    const QString qtTexts = QLibraryInfo::location(QLibraryInfo::TranslationsPath) + "/qtbase_" + language;
    for (const QString& file : {qtTexts, texts.arg(language)}) {
      auto* translator = new QTranslator(&application);
      if (translator->load(file)) QCoreApplication::installTranslator(translator);
    }
    return;
  }
}

// The desktop's copy of the icon, which may be of its theme, else the program's own.
QIcon ProgramIcon() {
  QIcon own;
  for (const int size : {16, 32, 64, 256}) own.addFile(QStringLiteral(":/Vorlane/Icon/%1.png").arg(size));
  return QIcon::fromTheme(QStringLiteral("vorlane-actions"), own);
}

struct Request {
  QString action;
  QStringList paths;
};

// Ends the program for --help, --version and a wrong command line.
Request ParseArguments(const QApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QCoreApplication::translate(
      "main", "Runs actions over PDF files, in a window. See 'vorlane-run' for the shell."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption action(QStringLiteral("action"),
                                  QCoreApplication::translate("main", "Opens the settings of this action at once."),
                                  QStringLiteral("NAME"));
  parser.addOption(action);
  parser.addPositionalArgument(
      QStringLiteral("FILE"),
      QCoreApplication::translate("main", "PDF files, folders, an action list (.xqq) or a settings file (.tsf)."),
      QStringLiteral("[FILE...]"));
  parser.process(application);
  return {parser.value(action), parser.positionalArguments()};
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  NativeName::InstallAsLocale();
  QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  QCoreApplication::setAttribute(Qt::AA_DisableWindowContextHelpButton);
  // The dialogs' style sheets make Qt warn many times over about things that are meant so.
  if (!qEnvironmentVariableIsSet("QT_LOGGING_RULES")) {
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
  }
  QApplication application(argc, argv);
  NativeName::InstallAsLocale();
  QCoreApplication::setApplicationName(QStringLiteral("vorlane-actions"));
  QCoreApplication::setApplicationVersion(QStringLiteral(VORLANE_VERSION));
  // Desktops find the window's menu entry and icon by this name.
  QGuiApplication::setDesktopFileName(QStringLiteral("vorlane-actions"));
  CUtils::SetAppName(QStringLiteral("vorlane-actions"));
  InstallTranslations(application);
  QApplication::setWindowIcon(ProgramIcon());
  const Request request = ParseArguments(application);
  SetupHostFolders();

  auto* const window = new MainWindow;
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  window->Open(request.paths);
  if (!request.action.isEmpty()) window->StartWith(request.action);
  return QApplication::exec();
}
