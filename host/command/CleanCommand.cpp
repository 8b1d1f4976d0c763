// SPDX-License-Identifier: Apache-2.0
#include "host/command/CleanCommand.h"

#include <ctime>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/files/LeftoverFiles.h"

namespace {

constexpr std::time_t kOneDay = 24 * 60 * 60;

}  // namespace

CleanCommand::CleanCommand()
    : Command(QStringLiteral("clean"),
              QStringLiteral("Removes temporary files of killed runs that are older than a day.")) {
  AddOption(QStringLiteral("recursive"), QStringLiteral("Also in the folders below."));
  parser_.addPositionalArgument(QStringLiteral("FOLDER"), QStringLiteral("Folders of documents."),
                                QStringLiteral("FOLDER..."));
  AddExample(QStringLiteral("clean --recursive archive/ out/"));
}

void CleanCommand::Check() {
  if (parser_.positionalArguments().isEmpty()) throw CommandError(kExitUsage, QStringLiteral("No folder is given."));
}

int CleanCommand::Execute() {
  Interruption::Install();
  bool well = true;
  for (const QString& folder : parser_.positionalArguments()) {
    LeftoverFiles::Remove(NativeName::ToBytes(folder).toStdString(), IsSet("recursive"), std::time(nullptr) - kOneDay,
                          [&](const std::string& path, const std::string& problem) {
                            if (problem.empty()) {
                              well = Console::Print(Console::OneLine(path) + '\n') && well;
                            } else {
                              Console::ErrorAbout(path, problem);
                              well = false;
                            }
                          });
  }
  return well ? kExitDone : kExitSomeFailed;
}
