// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>
#include <QCoreApplication>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NativeName.h"
#include "host/base/WindowSystem.h"
#include "host/command/Program.h"

namespace {

QtMessageHandler usualHandler = nullptr;

// Qt aborts when the display cannot be reached; the user's mistake gets the usual exit code instead. The
// warnings before it say why.
void RefuseDisplay(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type != QtFatalMsg) {
    usualHandler(type, context, text);
    return;
  }
  Console::Error(QStringLiteral("The display cannot be used."));
  std::_Exit(kExitNotLoaded);
}

std::unique_ptr<QCoreApplication> ConnectToDisplay(int& argc, char** argv) {
  WindowSystem& system = WindowSystem::Get();
  usualHandler = qInstallMessageHandler(RefuseDisplay);
  std::unique_ptr<QCoreApplication> application = system.MakeApplication(argc, argv);
  qInstallMessageHandler(nullptr);
  return application;
}

}  // namespace

int main(int argc, char** argv) {
  Console::OpenMissingDescriptors();
  std::signal(SIGPIPE, SIG_IGN);
  // A file that grows beyond the limit is an error like a full disk; the signal would end the program.
  std::signal(SIGXFSZ, SIG_IGN);
  NativeName::InstallAsLocale();
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments += NativeName::ToText(argv[i]);
  // The application classes would remove options that they know from the command's arguments.
  int applicationArguments = argc > 0 ? 1 : 0;
  try {
    Program program;
    program.Parse(arguments);
    std::unique_ptr<QCoreApplication> application;
    if (program.NeedsWindowSystem()) {
      program.PrepareWindowSystem();
      application = ConnectToDisplay(applicationArguments, argv);
    } else {
      application = std::make_unique<QCoreApplication>(applicationArguments, argv);
    }
    NativeName::InstallAsLocale();
    QCoreApplication::setApplicationName(QStringLiteral("vorlane-run"));
    return program.Run();
  } catch (const CommandError& error) {
    Console::Error(error.Message());
    return error.Code();
  } catch (const std::exception& exception) {
    Console::Error(QString::fromLocal8Bit(exception.what()));
    return kExitSomeFailed;
  }
}
