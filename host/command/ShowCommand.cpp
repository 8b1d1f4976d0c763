// SPDX-License-Identifier: Apache-2.0
#include "host/command/ShowCommand.h"

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/NativeName.h"
#include "host/base/PdfLibrary.h"

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
  const std::vector<std::wstring> passwords = Passwords();
  const std::unique_ptr<PdfLibrary::Wrapper> library = PdfLibrary::Open(LibraryFile());
  int code = kExitDone;
  for (const QString& argument : parser_.positionalArguments()) {
    const std::string file = NativeName::ToBytes(argument).toStdString();
    const std::string problem = PdfLibrary::LoadDocument(*library, file, passwords);
    if (!problem.empty()) {
      Console::ErrorAbout(file, problem);
      code = kExitSomeFailed;
      continue;
    }
    const std::string url = PdfLibrary::ToUtf8(library->GetBaseURL());
    if (!Console::Print(Console::OneLine(file) + '\t' + Console::OneLine(url) + '\n')) return kExitSomeFailed;
    library->RemoveDocument(library->SelectedDocument());
  }
  return code;
}
