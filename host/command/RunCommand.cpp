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
#include "host/files/ProtectedFiles.h"
#include "host/run/DocumentRun.h"
#include "host/run/ReportFile.h"
#include "host/run/ResumedReport.h"
#include "host/run/RunPlan.h"
#include "host/run/RunReporter.h"
#include "host/run/WorkerPool.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

constexpr int kMostJobs = 1024;
constexpr int kUsualSeconds = 900;
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
void CallSequenceProc(const std::vector<ConfiguredAction>& actions, int (CActionInterface::*proc)(WorkProcInfoStruct*),
                      const char* when) {
  for (const ConfiguredAction& action : actions) {
    QMap<QString, QVariant> settings = action.settings;
    WorkProcInfoStruct info{nullptr, nullptr, nullptr, nullptr, &settings};
    try {
      (action.action->*proc)(&info);
    } catch (const std::exception& exception) {
      throw CommandError(kExitNotLoaded,
                         QStringLiteral("Action '%1' failed %2 the documents: %3")
                             .arg(action.name, QLatin1String(when), QString::fromUtf8(exception.what())));
    } catch (...) {
      throw CommandError(kExitNotLoaded,
                         QStringLiteral("Action '%1' failed %2 the documents.").arg(action.name, QLatin1String(when)));
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
  AddOption(QStringLiteral("recursive"), QStringLiteral("A folder means the PDF files below it."));
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
  AddOption(QStringLiteral("timeout"),
            QStringLiteral("A file fails that takes longer (default: 900; 0: no limit; none with --jobs 0). Time in "
                           "which the run is stopped or the machine sleeps does not count."),
            QStringLiteral("SECONDS"));
  AddOption(QStringLiteral("memory"),
            QStringLiteral("A file fails that takes more memory; each process may take as much (default: 4096; 0: no "
                           "limit)."),
            QStringLiteral("MIB"));
  AddOption(QStringLiteral("allow-breaking-signatures"),
            QStringLiteral("Also saves signed documents that can only be rewritten."));
  AddOption(QStringLiteral("gui"), QStringLiteral("For actions that paint."));
  AddOption(QStringLiteral("exit-zero"),
            QStringLiteral("Ends with 0 also when documents failed; the report names them."));
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
  if (IsSet("exit-zero") && !IsSet("report")) refuse("Option '--exit-zero' needs '--report'.");
  Settings();
  jobs_ = Number("jobs", Cores(), 0, kMostJobs);
  timeout_ = Number("timeout", kUsualSeconds, 0, kMostSeconds);
  memoryLimit_ = static_cast<std::size_t>(Number("memory", kUsualMebibytes, 0, kMostMebibytes)) << 20;
  if (IsSet("timeout") && timeout_ > 0 && jobs_ == 0) {
    refuse("Option '--timeout' needs worker processes, but '--jobs 0' forbids them.");
  }
}

// A connection to a display does not survive in forked workers.
void RunCommand::PrepareWindowSystem() const {
  if (jobs_ > 0) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  } else {
    Command::PrepareWindowSystem();
  }
}

std::vector<ConfiguredAction> RunCommand::LoadActions(ActionCatalog& catalog) const {
  std::vector<ConfiguredAction> actions;
  if (IsSet("action")) {
    actions.push_back({&catalog.Get(Value("action")), Value("action"), Settings()});
    return actions;
  }
  QStringList warnings;
  const ActionListFile list = ActionList::Read(ListFile(), &warnings);
  for (const QString& warning : warnings) Console::Error(warning);
  for (const ActionListFile::Entry& entry : list.entries) {
    actions.push_back({&catalog.Get(entry.actionName), entry.actionName, entry.settings});
  }
  return actions;
}

QString RunCommand::ListFile() const {
  return ActionList::Locate(Value("list"));
}

void RunCommand::CollectInputs(InputList& inputs) const {
  for (const QString& file : parser_.positionalArguments()) inputs.Add(NativeName::ToBytes(file).toStdString());
  if (IsSet("files-from")) inputs.AddFrom(BytesOf("files-from").toStdString());
}

// What the run reads beside the documents.
ProtectedFiles RunCommand::OtherInputs() const {
  ProtectedFiles files;
  if (IsSet("files-from")) {
    const std::string name = BytesOf("files-from").toStdString();
    name == "-" ? files.Add(STDIN_FILENO, "the list of files") : files.Add(name, "the list of files");
  }
  if (IsSet("password-file")) files.Add(BytesOf("password-file").toStdString(), "the password file");
  if (IsSet("list")) files.Add(NativeName::ToBytes(ListFile()).toStdString(), "the action list");
  return files;
}

void RunCommand::CheckReport(const InputList& inputs, const ProtectedFiles& others) const {
  const std::string report = BytesOf("report").toStdString();
  if (report.empty() || report == "-") return;
  const std::optional<FileIdentity> identity = IdentityOf(report);
  const std::string what = identity && inputs.Holds(*identity) ? "an input" : others.What(report);
  if (what.empty()) return;
  throw CommandError(
      kExitUsage,
      QStringLiteral("The report '%1' would overwrite %2.").arg(Value("report"), QString::fromStdString(what)));
}

int RunCommand::Execute() {
  Interruption::Install();
  RunSettings settings;
  settings.processing = {Password(), IsSet("allow-breaking-signatures")};
  settings.memoryLimit = memoryLimit_;
  settings.libraryFile = LibraryFile();
  ActionCatalog catalog(ToolsFolders());
  settings.actions = LoadActions(catalog);

  const std::string outputFolder = BytesOf("output-dir").toStdString();
  const std::optional<FileIdentity> existingOutput = outputFolder.empty() ? std::nullopt : IdentityOf(outputFolder);
  InputList inputs(IsSet("recursive"), existingOutput ? &*existingOutput : nullptr);
  CollectInputs(inputs);
  ProtectedFiles protectedFiles = OtherInputs();
  CheckReport(inputs, protectedFiles);
  return RunOver(inputs, outputFolder, protectedFiles, settings);
}

int RunCommand::RunOver(const InputList& inputs, const std::string& outputFolder, ProtectedFiles& protectedFiles,
                        const RunSettings& settings) const {
  const std::string reportName = BytesOf("report").toStdString();
  const std::string earlier = BytesOf("resume").toStdString();
  const std::optional<FileIdentity> written = IdentityOf(reportName);
  const bool sameFile = earlier == reportName || (written && written == IdentityOf(earlier));
  const bool append = !earlier.empty() && sameFile && ReportFile::IsLines(reportName);
  // A job that resumes its own report has none yet in its first run.
  const ResumedReport resumed = earlier.empty() || (sameFile && !written) ? ResumedReport() : ResumedReport(earlier);
  if (resumed.TornLines() > 0 && !IsSet("quiet")) {
    Console::Error(
        QStringLiteral("Lines of the report '%1' that were cut off by a crash: %2. Their files are processed again.")
            .arg(Value("resume"))
            .arg(resumed.TornLines()));
  }
  if (!outputFolder.empty()) MakeOutputFolder(outputFolder);
  ReportFile report(reportName, append);
  report.Protect(protectedFiles);
  const RunPlan plan(inputs, outputFolder, resumed, protectedFiles);
  if (!append) {
    resumed.CarryOver([&](const QByteArray& json) {
      report.Add({json.constData(), static_cast<std::size_t>(json.size())});
    });
  }

  RunReporter reporter(report, inputs.Count(), IsSet("quiet"));
  reporter.CountDoneBefore(plan.DoneBefore());
  CallSequenceProc(settings.actions, &CActionInterface::PreSequenceProc, "before");
  for (const FileRecord& record : plan.Settled()) reporter.Take(record);
  DocumentRun run(settings, plan, reporter);
  if (jobs_ == 0) {
    run.RunHere();
  } else {
    WorkerPool(run, plan.Count(), static_cast<std::size_t>(jobs_), std::chrono::seconds(timeout_)).Run();
  }
  const int signal = Interruption::Signal();
  const bool reported = reporter.Finish(signal != 0);
  if (inputs.Leftovers() > 0 && !IsSet("quiet")) {
    Console::Error(QStringLiteral("Temporary files (.vorlane-*.tmp) of killed or running runs in the folders: %1. "
                                  "'vorlane-run clean' removes those that are older than a day.")
                       .arg(inputs.Leftovers()));
  }
  CallSequenceProc(settings.actions, &CActionInterface::PostSequenceProc, "after");
  if (signal != 0) return kExitSignalBase + signal;
  return reported && (reporter.Failed() == 0 || IsSet("exit-zero")) ? kExitDone : kExitSomeFailed;
}
