// SPDX-License-Identifier: Apache-2.0
#include "host/command/ShowCommand.h"

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/files/InputList.h"
#include "host/run/DocumentFacts.h"
#include "host/run/FileQuery.h"

ShowCommand::ShowCommand()
    : BatchCommand(QStringLiteral("show"),
                   QStringLiteral("Prints each file's name and base URL, separated by a tab.")) {
  AddOption(QStringLiteral("json"), QStringLiteral("Prints all facts about each file: one JSON object a line."));
  AddInputOptions();
  AddFileArgument();
  AddPasswordOptions();
  AddWorkerOptions();
  AddLibraryOption();
  AddExample(QStringLiteral("show *.pdf"));
  AddExample(QStringLiteral("show --json --recursive archive/ > facts.jsonl"));
}

void ShowCommand::Check() {
  CheckPasswordOptions();
  CheckInputOptions();
  CheckWorkerOptions();
}

int ShowCommand::Execute() {
  FileQuestion question = Question();
  if (IsSet("json")) {
    question.answer = [](PdfLibrary::Wrapper& library, const std::string& file, const FileQuestion::Print& print) {
      print(DocumentFacts::ToJson(library, file) + '\n');
    };
    question.failure = [](const std::string& file, const std::string& error) {
      return DocumentFacts::ErrorToJson(file, error) + '\n';
    };
  } else {
    question.answer = [](PdfLibrary::Wrapper& library, const std::string& file, const FileQuestion::Print& print) {
      const std::string url = PdfLibrary::ToUtf8(library.GetBaseURL());
      print((Console::OneLine(file) + '\t' + Console::OneLine(url) + '\n').toStdString());
    };
  }
  InputList inputs(IsSet("recursive"), nullptr);
  CollectInputs(inputs);
  FileQuery query(inputs, question);
  if (const int signal = Ask(query, inputs.Count())) return kExitSignalBase + signal;
  return query.IsComplete() ? kExitDone : kExitSomeFailed;
}
