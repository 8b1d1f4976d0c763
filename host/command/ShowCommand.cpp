// SPDX-License-Identifier: Apache-2.0
#include "host/command/ShowCommand.h"

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/LibraryReasons.h"
#include "host/base/NativeName.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

ShowCommand::ShowCommand()
    : Command(QStringLiteral("show"), QStringLiteral("Prints each file's name and base URL, separated by a tab.")) {
  AddLibraryOption();
  AddPasswordOptions();
  parser_.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("PDF files."), QStringLiteral("FILE..."));
}

void ShowCommand::Check() {
  CheckPasswordOptions();
  if (parser_.positionalArguments().isEmpty()) throw CommandError(kExitUsage, QStringLiteral("No file is given."));
}

int ShowCommand::Execute() {
  const std::wstring password = Password();
  HalvexPDFLibraryCPDylibCPP1311 library(LibraryFile());
  if (!library.LibraryLoaded()) {
    throw CommandError(kExitNotLoaded,
                       QStringLiteral("The PDF library cannot be loaded: it is missing or incomplete."));
  }
  int code = kExitDone;
  for (const QString& argument : parser_.positionalArguments()) {
    const std::string file = NativeName::ToBytes(argument).toStdString();
    if (library.LoadFromFile(NativeName::ToWide(file), password) == 0) {
      Console::ErrorAbout(file, LoadingReason(library.LastErrorCode(), file));
      code = kExitSomeFailed;
      continue;
    }
    const std::string url = QString::fromStdWString(library.GetBaseURL()).toUtf8().toStdString();
    if (!Console::Print(Console::OneLine(file) + '\t' + Console::OneLine(url) + '\n')) return kExitSomeFailed;
    library.RemoveDocument(library.SelectedDocument());
  }
  return code;
}
