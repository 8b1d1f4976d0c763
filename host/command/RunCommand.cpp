// SPDX-License-Identifier: Apache-2.0
#include "host/command/RunCommand.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <optional>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/files/FileLookup.h"
#include "host/files/InputList.h"
#include "host/run/MemoryLimit.h"
#include "host/run/ResumedReport.h"
#include "host/run/RunPlan.h"
#include "host/run/RunReporter.h"
#include "host/run/Worker.h"
#include "host/run/WorkerPool.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

constexpr int kMostJobs = 1024;
constexpr int kMostSeconds = 1000000;
constexpr int kUsualMebibytes = 4096;
constexpr int kMostMebibytes = 1 << 20;

int Cores() {
  return static_cast<int>(std::clamp<long>(sysconf(_SC_NPROCESSORS_ONLN), 1, kMostJobs));
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
  const std::optional<FileStatus> status = FileLookup().Get(path);
  return status ? std::optional(status->identity) : std::nullopt;
}

// Once before and once after all documents, for each action.
void CallSequenceProc(const std::vector<RunStep>& steps, int (CActionInterface::*proc)(WorkProcInfoStruct*),
                      const char* when) {
  for (const RunStep& step : steps) {
    QMap<QString, QVariant> settings = step.settings;
    WorkProcInfoStruct info{nullptr, nullptr, nullptr, nullptr, &settings};
    try {
      (step.action->*proc)(&info);
    } catch (const std::exception& exception) {
      throw CommandError(kExitNotLoaded, QStringLiteral("Action '%1' failed %2 the documents: %3")
                                             .arg(step.name, QLatin1String(when), QString::fromUtf8(exception.what())));
    } catch (...) {
      throw CommandError(kExitNotLoaded,
                         QStringLiteral("Action '%1' failed %2 the documents.").arg(step.name, QLatin1String(when)));
    }
  }
}

void MakeOutputFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!std::filesystem::is_directory(folder)) {
    throw CommandError(kExitUsage, QStringLiteral("Cannot make the output folder '%1': %2")
                                       .arg(NativeName::ToText(folder), QString::fromStdString(error.message())));
  }
}

}  // namespace

RunCommand::RunCommand()
    : Command(QStringLiteral("run"), QStringLiteral("Runs an action list, or one action, over PDF files.")) {
  AddOption(QStringLiteral("list"), QStringLiteral("The action list: its name in the sequence folder, or a file."),
            QStringLiteral("NAME|FILE.xqq"));
  AddActionOptions();
  AddOption(QStringLiteral("output-dir"), QStringLiteral("Writes the results to this folder; it is made if missing."),
            QStringLiteral("DIR"));
  AddOption(QStringLiteral("in-place"), QStringLiteral("Replaces the files by the results."));
  AddOption(QStringLiteral("files-from"),
            QStringLiteral("Reads more names from a file, or '-': one a line, or NUL-separated."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("recursive"), QStringLiteral("A folder stands for the PDF files below it."));
  AddPasswordOptions();
  AddOption(
      QStringLiteral("report"),
      QStringLiteral(
          "JSON report: an array at the end; '-' or a name ending in .jsonl: a line for each file as it finishes."),
      QStringLiteral("FILE"));
  AddOption(QStringLiteral("resume"), QStringLiteral("Leaves out the files that this earlier report says are done."),
            QStringLiteral("REPORT"));
  AddOption(QStringLiteral("jobs"),
            QStringLiteral("Worker processes (default: the cores); 0 runs everything in one process, for actions that "
                           "gather across documents."),
            QStringLiteral("N"));
  AddOption(QStringLiteral("timeout"), QStringLiteral("Gives up a file after so many seconds (not with --jobs 0)."),
            QStringLiteral("SECONDS"));
  AddOption(QStringLiteral("memory"),
            QStringLiteral("Gives up a file that takes more memory, for each process (default: 4096; 0: no limit)."),
            QStringLiteral("MIB"));
  AddOption(QStringLiteral("allow-breaking-signatures"),
            QStringLiteral("Also saves signed documents that can only be rewritten."));
  AddOption(QStringLiteral("gui"), QStringLiteral("For actions that paint."));
  AddOption(QStringLiteral("quiet"), QStringLiteral("Prints errors only."));
  AddToolsOption();
  AddLibraryOption();
  parser_.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("PDF files, or folders with --recursive."),
                                QStringLiteral("FILE..."));
}

void RunCommand::Check() {
  const auto refuse = [](const char* message) { throw CommandError(kExitUsage, QLatin1String(message)); };
  CheckPasswordOptions();
  Exclude("list", "action");
  Exclude("list", "set");
  Exclude("output-dir", "in-place");
  if (!IsSet("list") && !IsSet("action")) refuse("Either '--list' or '--action' is needed.");
  if (!IsSet("output-dir") && !IsSet("in-place")) refuse("Either '--output-dir' or '--in-place' is needed.");
  for (const char* name : {"list", "action", "output-dir", "files-from", "report", "resume"}) {
    if (IsSet(name) && Value(name).isEmpty()) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--%1' needs a name.").arg(QLatin1String(name)));
    }
  }
  if (parser_.positionalArguments().isEmpty() && !IsSet("files-from")) refuse("No file is given.");
  // It could take the place of a result.
  if (IsSet("output-dir") && Value("report").endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
    refuse("A report's name cannot end in .pdf.");
  }
  Settings();
  jobs_ = Number("jobs", Cores(), 0, kMostJobs);
  timeout_ = Number("timeout", 0, 1, kMostSeconds);
  memoryLimit_ = static_cast<std::size_t>(Number("memory", kUsualMebibytes, 0, kMostMebibytes)) << 20;
  if (timeout_ > 0 && jobs_ == 0) refuse("Option '--timeout' needs worker processes, but '--jobs 0' forbids them.");
}

// A connection to a display does not survive in forked workers.
void RunCommand::PrepareWindowSystem() const {
  if (jobs_ > 0) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  } else {
    Command::PrepareWindowSystem();
  }
}

std::vector<RunStep> RunCommand::LoadSteps(ActionCatalog& catalog) const {
  std::vector<RunStep> steps;
  if (IsSet("action")) {
    steps.push_back({&catalog.Get(Value("action")), Value("action"), Settings()});
    return steps;
  }
  QStringList warnings;
  const ActionListFile list = ActionList::Read(ActionList::Locate(Value("list")), &warnings);
  for (const QString& warning : warnings) Console::Error(warning);
  for (const ActionListFile::Entry& entry : list.entries) {
    steps.push_back({&catalog.Get(entry.actionName), entry.actionName, entry.settings});
  }
  return steps;
}

void RunCommand::CollectInputs(InputList& inputs) const {
  for (const QString& file : parser_.positionalArguments()) inputs.Add(NativeName::ToBytes(file).toStdString());
  if (IsSet("files-from")) inputs.AddFrom(BytesOf("files-from").toStdString());
}

void RunCommand::RefuseReportOverInput(const InputList& inputs) const {
  const std::string report = BytesOf("report").toStdString();
  if (report.empty() || report == "-") return;
  const std::optional<FileIdentity> identity = IdentityOf(report);
  if (identity && inputs.Holds(*identity)) {
    throw CommandError(kExitUsage, QStringLiteral("The report '%1' would overwrite an input.").arg(Value("report")));
  }
}

int RunCommand::Execute() {
  Interruption::Install();
  ProcessingOptions options;
  options.password = Password();
  options.allowBreakingSignatures = IsSet("allow-breaking-signatures");
  ActionCatalog catalog(ToolsFolders());
  const std::vector<RunStep> steps = LoadSteps(catalog);

  const std::string outputFolder = BytesOf("output-dir").toStdString();
  const std::optional<FileIdentity> existingOutput = outputFolder.empty() ? std::nullopt : IdentityOf(outputFolder);
  InputList inputs(IsSet("recursive"), existingOutput ? &*existingOutput : nullptr);
  CollectInputs(inputs);
  RefuseReportOverInput(inputs);

  // Read before the new report may take the earlier one's place, and once more to carry its records over.
  const std::string report = BytesOf("report").toStdString();
  std::string earlier = BytesOf("resume").toStdString();
  // The first run of a job that is told to resume itself has nothing to resume.
  if (earlier == report && !IdentityOf(report)) earlier.clear();
  const ResumedReport resumed = earlier.empty() ? ResumedReport() : ResumedReport(earlier, [](const QByteArray&) {});
  const bool append = !earlier.empty() && RunReporter::IsStreamed(report) && IdentityOf(report) == IdentityOf(earlier);
  if (!outputFolder.empty()) MakeOutputFolder(outputFolder);
  RunReporter reporter(report, append, IsSet("quiet"));
  reporter.SetTotal(inputs.Count());
  if (!earlier.empty() && !append) {
    ResumedReport(earlier, [&](const QByteArray& json) {
      reporter.Carry({json.constData(), static_cast<std::size_t>(json.size())});
    });
  }

  CallSequenceProc(steps, &CActionInterface::PreSequenceProc, "before");
  RunPlan plan(inputs, outputFolder, resumed);
  // A worker would only cost time where no other file needs to be kept from a crash.
  const bool alone = jobs_ == 0 || (inputs.Count() == 1 && !IsSet("jobs") && timeout_ == 0);
  if (alone) {
    RunHere(plan, steps, options, reporter);
  } else if (inputs.Count() > 0) {
    RunInWorkers(plan, steps, options, reporter);
  }
  const int signal = Interruption::Signal();
  const bool reported = reporter.Finish(signal != 0);
  CallSequenceProc(steps, &CActionInterface::PostSequenceProc, "after");
  if (signal != 0) return kExitSignalBase + signal;
  return reported && reporter.Failed() == 0 ? kExitDone : kExitSomeFailed;
}

void RunCommand::RunHere(RunPlan& plan, const std::vector<RunStep>& steps, const ProcessingOptions& options,
                         RunReporter& reporter) const {
  HalvexPDFLibraryCPDylibCPP1311 library(LibraryFile());
  if (!library.LibraryLoaded()) {
    throw CommandError(kExitNotLoaded,
                       QStringLiteral("The PDF library cannot be loaded: it is missing or incomplete."));
  }
  MemoryLimit::Set(memoryLimit_);
  DocumentProcessor processor(library, steps, options);
  Interruption::EndAtSecond();
  while (Interruption::Signal() == 0) {
    const std::optional<RunPlan::Step> step = plan.Next();
    if (!step) return;
    if (step->doneBefore) {
      reporter.CountDoneBefore();
    } else {
      reporter.Take(step->settled ? *step->settled : processor.Process(step->job.file, step->job.output));
    }
    reporter.Flush();
  }
}

void RunCommand::RunInWorkers(RunPlan& plan, const std::vector<RunStep>& steps, const ProcessingOptions& options,
                              RunReporter& reporter) const {
  const WorkerSettings settings{LibraryFile(), steps, options, memoryLimit_, reporter.WantsRecords()};
  WorkerPool pool(settings, std::chrono::seconds(timeout_), reporter);
  pool.Run(plan, std::min(static_cast<std::size_t>(jobs_), plan.Remaining()));
}
