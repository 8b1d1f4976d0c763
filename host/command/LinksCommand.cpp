// SPDX-License-Identifier: Apache-2.0
#include "host/command/LinksCommand.h"

#include "host/actions/UrlCheck.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Counted.h"
#include "host/files/InputList.h"

namespace {

void RequireUrl(const char* option, const QString& url) {
  const QString error = CheckUrl(url, UrlUse::kOther).error;
  if (error.isEmpty()) return;
  throw CommandError(kExitUsage,
                     QStringLiteral("Option '--%1' takes a URL, not '%2': %3.").arg(QLatin1String(option), url, error));
}

}  // namespace

LinksCommand::LinksCommand()
    : BatchCommand(
          QStringLiteral("links"),
          QStringLiteral(
              "Lists the relative links of annotations, outlines and forms, and where viewers lead for them.")) {
  AddOption(QStringLiteral("all"),
            QStringLiteral("Also lists links that have a scheme; '--check' looks all links up."));
  AddOption(QStringLiteral("base"),
            QStringLiteral("Shows what this base URL would do instead of the files' own; an empty one: without any."),
            QStringLiteral("URL"));
  AddOption(QStringLiteral("check"),
            QStringLiteral("Looks up the links that lead to URL and below in a folder, and lists those whose file is "
                           "missing there; may be repeated."),
            QStringLiteral("URL=FOLDER"));
  AllowRepeated("check");
  AddOption(QStringLiteral("strict"),
            QStringLiteral("Exit code 1 when a relative link has no base URL or viewers disagree on it."));
  AddOption(QStringLiteral("json"), QStringLiteral("Prints a JSON object for each link, one a line."));
  AddOption(QStringLiteral("csv"), QStringLiteral("Prints CSV with a row for each link."));
  AddInputOptions();
  AddFileArgument();
  AddPasswordOptions();
  AddWorkerOptions();
  AddLibraryOption();
  AddExample(QStringLiteral("links --recursive archive/"));
  AddExample(QStringLiteral("links --base https://example.org/manual/ manual.pdf"));
  AddExample(QStringLiteral("links --check https://example.org/=/srv/www --recursive /srv/www"));
}

void LinksCommand::Check() {
  CheckPasswordOptions();
  Exclude("json", "csv");
  Exclude("all", "check");
  CheckInputOptions();
  CheckWorkerOptions();
  if (IsSet("base")) {
    if (!Value("base").isEmpty()) RequireUrl("base", Value("base"));
    const QString base = UrlAsWritten(Value("base"));
    options_.base = LinkBase{base, base.isEmpty() ? ViewerRules::Base() : ViewerRules::Base(base.toLatin1())};
  }
  for (const QString& text : parser_.values(QStringLiteral("check"))) {
    options_.checks.emplace_back(text);
    RequireUrl("check", options_.checks.back().Url());
  }
  options_.all = IsSet("all");
  if (IsSet("json")) options_.format = LinkListingOptions::Format::kJson;
  if (IsSet("csv")) options_.format = LinkListingOptions::Format::kCsv;
}

int LinksCommand::Execute() {
  const FileQuestion question = Question();
  InputList inputs(IsSet("recursive"), nullptr);
  CollectInputs(inputs);
  if (IsSet("csv") && !Console::Print(QByteArray::fromStdString(LinkFormat::CsvHeader()))) return kExitSomeFailed;
  LinkListing listing(inputs, question, options_);
  if (const int signal = Ask(listing, inputs.Count())) return kExitSignalBase + signal;
  const LinkCounts& counts = listing.Counts();
  const bool strictlyWrong = IsSet("strict") && counts.disagreeing + counts.withoutBase > 0;
  const bool complete = listing.IsComplete() && counts.incomplete == 0;
  const bool printed = PrintSummary(counts);
  for (const QString& url : listing.UrlsWithoutLinks()) {
    Console::Error(QStringLiteral("No link leads to '%1' or below.").arg(url));
  }
  return printed && complete && counts.missing == 0 && !strictlyWrong ? kExitDone : kExitSomeFailed;
}

// With the table only: JSON and CSV have links and nothing else.
bool LinksCommand::PrintSummary(const LinkCounts& counts) const {
  if (options_.format != LinkListingOptions::Format::kTable) return true;
  QString text = QString::fromStdString(Counted(counts.links, "link") + " in " + Counted(counts.files, "file"));
  if (counts.relative > 0) {
    text += QStringLiteral(", %1 relative; viewers ").arg(counts.relative) +
            (counts.disagreeing > 0 ? QStringLiteral("disagree on %1 of these").arg(counts.disagreeing)
                                    : QStringLiteral("agree on these"));
    if (counts.withoutBase > 0) text += QStringLiteral(", %1 without a base URL").arg(counts.withoutBase);
  } else if (counts.links > 0) {
    text += QStringLiteral(", none relative");
  }
  if (!options_.checks.empty()) {
    text += QStringLiteral("; %1 checked, %2 missing").arg(counts.checked).arg(counts.missing);
  }
  return Console::Print(text + '\n');
}
