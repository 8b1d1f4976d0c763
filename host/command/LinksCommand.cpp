// SPDX-License-Identifier: Apache-2.0
#include "host/command/LinksCommand.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/run/WorkerPool.h"
#include "utils/LinkTarget.h"

namespace {

constexpr int kMostJobs = 1024;
constexpr int kUsualSeconds = 900;
constexpr int kMostSeconds = 1000000;
constexpr int kUsualMebibytes = 4096;
constexpr int kMostMebibytes = 1 << 20;

QString Counted(std::size_t count, const char* one, const char* many) {
  return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

}  // namespace

LinksCommand::LinksCommand()
    : Command(QStringLiteral("links"), QStringLiteral("Lists relative links and where viewers lead for them.")) {
  AddOption(QStringLiteral("all"), QStringLiteral("Also lists links that have a scheme."));
  AddOption(QStringLiteral("base"), QStringLiteral("Shows what this base URL would do instead of the files' own."),
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
  AddOption(QStringLiteral("files-from"),
            QStringLiteral("Reads more names from a file, or '-': one a line, or NUL-separated."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("recursive"), QStringLiteral("A folder means the PDF files below it."));
  AddOption(QStringLiteral("jobs"), QStringLiteral("Worker processes (default: the cores)."), QStringLiteral("N"));
  AddOption(QStringLiteral("timeout"), QStringLiteral("A file fails that takes longer (default: 900; 0: no limit)."),
            QStringLiteral("SECONDS"));
  AddOption(QStringLiteral("memory"),
            QStringLiteral("A file fails that takes more memory (default: 4096; 0: no limit)."), QStringLiteral("MIB"));
  AddPasswordOptions();
  AddLibraryOption();
  parser_.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("PDF files, or folders with --recursive."),
                                QStringLiteral("FILE..."));
}

void LinksCommand::Check() {
  CheckPasswordOptions();
  Exclude("json", "csv");
  if (IsSet("files-from") && Value("files-from").isEmpty()) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--files-from' needs a name."));
  }
  if (parser_.positionalArguments().isEmpty() && !IsSet("files-from")) {
    throw CommandError(kExitUsage, QStringLiteral("No file is given."));
  }
  if (IsSet("base")) {
    if (IsRelativeLink(Value("base"))) {
      throw CommandError(kExitUsage,
                         QStringLiteral("Option '--base' takes a URL with a scheme, not '%1'.").arg(Value("base")));
    }
    options_.base = Value("base");
  }
  for (const QString& check : parser_.values(QStringLiteral("check"))) options_.checks.emplace_back(check);
  const int cores = static_cast<int>(std::clamp<long>(sysconf(_SC_NPROCESSORS_ONLN), 1, kMostJobs));
  jobs_ = Number("jobs", cores, 1, kMostJobs);
  timeout_ = Number("timeout", kUsualSeconds, 0, kMostSeconds);
  options_.memoryLimit = static_cast<std::size_t>(Number("memory", kUsualMebibytes, 0, kMostMebibytes)) << 20;
  options_.all = IsSet("all");
  if (IsSet("json")) options_.format = LinkListingOptions::Format::kJson;
  if (IsSet("csv")) options_.format = LinkListingOptions::Format::kCsv;
}

int LinksCommand::Execute() {
  Interruption::Install();
  options_.libraryFile = LibraryFile();
  options_.password = Password();
  // A library that cannot be loaded is found out before any worker is.
  PdfLibrary::Open(options_.libraryFile);
  InputList inputs(IsSet("recursive"), nullptr);
  for (const QString& file : parser_.positionalArguments()) inputs.Add(NativeName::ToBytes(file).toStdString());
  if (IsSet("files-from")) inputs.AddFrom(BytesOf("files-from").toStdString());

  if (IsSet("csv") && !Console::Print(QByteArray::fromStdString(LinkFormat::CsvHeader()))) return kExitSomeFailed;
  LinkListing listing(options_, inputs);
  WorkerPool(listing, inputs.Count(), static_cast<std::size_t>(jobs_), std::chrono::seconds(timeout_)).Run();
  if (const int signal = Interruption::Signal(); signal != 0) return kExitSignalBase + signal;
  const bool printed = PrintSummary(listing) && listing.Printed();
  const LinkCounts& counts = listing.Counts();
  const bool strictlyWrong = IsSet("strict") && counts.disagreeing + counts.withoutBase > 0;
  return printed && listing.Failed() == 0 && counts.missing == 0 && !strictlyWrong ? kExitDone : kExitSomeFailed;
}

// With the table only: the other forms hold nothing but links.
bool LinksCommand::PrintSummary(const LinkListing& listing) const {
  if (options_.format != LinkListingOptions::Format::kTable) return true;
  const LinkCounts& counts = listing.Counts();
  QString text = Counted(counts.links, "link", "links") + QStringLiteral(" in ") +
                 Counted(counts.files, "file", "files") +
                 QStringLiteral(": %1 relative, viewers disagree on %2 of these, %3 without a base URL")
                     .arg(counts.relative)
                     .arg(counts.disagreeing)
                     .arg(counts.withoutBase);
  if (!options_.checks.empty())
    text += QStringLiteral("; %1 checked, %2 missing").arg(counts.checked).arg(counts.missing);
  return Console::Print(text + '\n');
}
