// SPDX-License-Identifier: Apache-2.0
#include "host/command/LinksCommand.h"

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/files/InputList.h"
#include "host/run/WorkerPool.h"
#include "utils/LinkTarget.h"

namespace {

QString Counted(std::size_t count, const char* one, const char* many) {
  return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

}  // namespace

LinksCommand::LinksCommand()
    : BatchCommand(QStringLiteral("links"), QStringLiteral("Lists relative links and where viewers lead for them.")) {
  AddOption(QStringLiteral("all"), QStringLiteral("Also lists links that have a scheme."));
  AddOption(
      QStringLiteral("base"),
      QStringLiteral("Shows what this base URL would do instead of the files' own; an empty one: what none would."),
      QStringLiteral("URL"));
  AddOption(QStringLiteral("check"),
            QStringLiteral("Looks up the links that lead to URL and below in a folder, and lists those whose file is "
                           "missing there; may be repeated."),
            QStringLiteral("URL=FOLDER"));
  AllowRepeated("check");
  AddOption(QStringLiteral("strict"),
            QStringLiteral("Exit code 1 when a relative link has no base URL or viewers disagree on it."));
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON object for each link, one a line."));
  AddOption(QStringLiteral("csv"), QStringLiteral("Prints a table with a row for each link."));
  AddInputOptions();
  AddFileArgument();
  AddPasswordOptions();
  AddWorkerOptions();
  AddLibraryOption();
}

void LinksCommand::Check() {
  CheckPasswordOptions();
  Exclude("json", "csv");
  Exclude("all", "check");
  CheckInputOptions();
  CheckWorkerOptions();
  if (IsSet("base")) {
    if (!Value("base").isEmpty() && IsRelativeLink(Value("base"))) {
      throw CommandError(kExitUsage,
                         QStringLiteral("Option '--base' takes a URL with a scheme, not '%1'.").arg(Value("base")));
    }
    options_.base = LinkBase{Value("base"), Value("base").toUtf8()};
  }
  for (const QString& check : parser_.values(QStringLiteral("check"))) options_.checks.emplace_back(check);
  options_.all = IsSet("all");
  if (IsSet("json")) options_.format = LinkListingOptions::Format::kJson;
  if (IsSet("csv")) options_.format = LinkListingOptions::Format::kCsv;
}

int LinksCommand::Execute() {
  FileQuestion question;
  question.libraryFile = LibraryFile();
  question.passwords = Passwords();
  question.memoryLimit = MemoryLimit();
  question.prompt = IsSet("json");
  InputList inputs(IsSet("recursive"), nullptr);
  CollectInputs(inputs);
  if (IsSet("csv") && !Console::Print(QByteArray::fromStdString(LinkFormat::CsvHeader()))) return kExitSomeFailed;
  LinkListing listing(inputs, question, options_);
  // To start worker processes takes longer than to read one file.
  const bool here = Jobs() == 0 || (inputs.Count() == 1 && !IsSet("jobs") && !IsSet("timeout"));
  if (here) {
    listing.RunHere();
  } else {
    Interruption::Install();
    WorkerPool(listing, inputs.Count(), static_cast<std::size_t>(Jobs()), TimeLimit()).Run();
  }
  listing.Finish();
  if (const int signal = Interruption::Signal()) return kExitSignalBase + signal;
  const LinkCounts& counts = listing.Counts();
  const bool strictlyWrong = IsSet("strict") && counts.disagreeing + counts.withoutBase > 0;
  const bool complete = listing.IsComplete() && counts.incomplete == 0;
  const bool printed = PrintSummary(counts);
  for (const QString& url : listing.UrlsWithoutLinks()) {
    Console::Error(QStringLiteral("No link leads to '%1' or below.").arg(url));
  }
  return printed && complete && counts.missing == 0 && !strictlyWrong ? kExitDone : kExitSomeFailed;
}

// With the table only: the other forms hold nothing but links.
bool LinksCommand::PrintSummary(const LinkCounts& counts) const {
  if (options_.format != LinkListingOptions::Format::kTable) return true;
  QString text = Counted(counts.links, "link", "links") + QStringLiteral(" in ") +
                 Counted(counts.files, "file", "files") +
                 QStringLiteral(": %1 relative, viewers disagree on %2 of these, %3 without a base URL")
                     .arg(counts.relative)
                     .arg(counts.disagreeing)
                     .arg(counts.withoutBase);
  if (!options_.checks.empty()) {
    text += QStringLiteral("; %1 checked, %2 missing").arg(counts.checked).arg(counts.missing);
  }
  return Console::Print(text + '\n');
}
