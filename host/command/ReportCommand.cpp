// SPDX-License-Identifier: Apache-2.0
#include "host/command/ReportCommand.h"

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/run/ReportSummary.h"

ReportCommand::ReportCommand()
    : Command(QStringLiteral("report"), QStringLiteral("Merges reports: counts, failed files, warnings.")) {
  AddOption(QStringLiteral("files-from"),
            QStringLiteral("Also names the files of this list, or '-', that no report has: one a line, or "
                           "NUL-separated."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON object, with all names."));
  AddOption(QStringLiteral("csv"), QStringLiteral("Prints CSV with a row for each file."));
  parser_.addPositionalArgument(QStringLiteral("REPORT"), QStringLiteral("Reports of both forms, or '-'."),
                                QStringLiteral("REPORT..."));
  AddExample(QStringLiteral("report r.jsonl"));
  AddExample(QStringLiteral("report --files-from files.txt part-*.jsonl"));
  AddExample(QStringLiteral("report --csv r.jsonl > r.csv"));
}

void ReportCommand::Check() {
  Exclude("json", "csv");
  if (parser_.positionalArguments().isEmpty()) throw CommandError(kExitUsage, QStringLiteral("No report is given."));
  const int readers = parser_.positionalArguments().count(QStringLiteral("-")) + (Value("files-from") == "-" ? 1 : 0);
  if (readers > 1) throw CommandError(kExitUsage, QStringLiteral("The standard input can be read once only."));
}

int ReportCommand::Execute() {
  Interruption::Install();
  ReportSummary summary;
  for (const QString& report : parser_.positionalArguments()) {
    summary.AddReport(NativeName::ToBytes(report).toStdString());
  }
  if (IsSet("files-from")) summary.Expect(BytesOf("files-from").toStdString());
  summary.Finish();
  const std::string text = IsSet("json") ? summary.ToJson() : IsSet("csv") ? summary.ToCsv() : summary.ToText();
  const bool printed = Console::Print(QByteArray::fromStdString(text));
  if (summary.IsTornOnly()) {
    Console::Error(QStringLiteral("No record is whole: a crash cut off all that the reports have."));
  }
  return printed && summary.IsAllDone() ? kExitDone : kExitSomeFailed;
}
