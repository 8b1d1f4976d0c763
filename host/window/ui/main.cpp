// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <QApplication>
#include <QCommandLineParser>
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

// The translations of Qt's own texts and of the window's, in the user's language, where there are any.
void InstallTranslations(QApplication& application) {
  const auto install = [&application](const QString& file, const QString& folder) {
    auto* translator = new QTranslator(&application);
    if (translator->load(QLocale(), file, QStringLiteral("_"), folder)) {
      QCoreApplication::installTranslator(translator);
    } else {
      delete translator;
    }
  };
  install(QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
  install(QStringLiteral("vorlane-actions"), QStringLiteral(":/Vorlane/Translations"));
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
  const Request request = ParseArguments(application);
  SetupHostFolders();

  MainWindow window;
  window.show();
  window.Open(request.paths);
  return QApplication::exec();
}
