// SPDX-License-Identifier: Apache-2.0
#include "host/command/RunCommand.h"

#include <unistd.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <QFile>
#include <QFileInfo>
#include <set>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/actions/UrlCheck.h"
#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/base/Suggestion.h"
#include "host/files/FileLookup.h"
#include "host/files/InputList.h"
#include "host/files/LeftoverFiles.h"
#include "host/files/ProtectedFiles.h"
#include "host/run/DocumentRun.h"
#include "host/run/JobDigest.h"
#include "host/run/ReportFile.h"
#include "host/run/ResumedReport.h"
#include "host/run/RunPlan.h"
#include "host/run/RunReporter.h"
#include "host/run/WorkerPool.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

[[noreturn]] void Refuse(const char* message) {
  throw CommandError(kExitUsage, QLatin1String(message));
}

// With its slash; empty for the current one.
std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);  // npos + 1 is 0
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

// The folder's real path with a slash at its end.
std::string RealFolder(const std::string& folder) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(folder, error);
  if (!error && std::filesystem::is_directory(real)) return real == "/" ? "/" : real.string() + '/';
  throw CommandError(kExitUsage, QStringLiteral("There is no folder '%1'.").arg(NativeName::ToText(folder)));
}

// The first key whose values depend on the files' folders, or an empty text.
QString UserOfFolders(const std::vector<ConfiguredAction>& actions) {
  for (const ConfiguredAction& action : actions) {
    for (auto each = action.templates.begin(); each != action.templates.end(); ++each) {
      if (each->UsesFolder()) return each.key();
    }
  }
  return {};
}

// Whether the folder could be made.
void CheckOutputFolder(const std::string& folder) {
  std::filesystem::path existing = std::filesystem::absolute(folder);
  std::error_code ignored;
  while (!std::filesystem::exists(existing, ignored) && existing.has_relative_path()) existing = existing.parent_path();
  if (std::filesystem::is_directory(existing, ignored)) return;
  throw CommandError(kExitUsage, QStringLiteral("Cannot make the output folder '%1': '%2' is a file")
                                     .arg(NativeName::ToText(folder), NativeName::ToText(existing.string())));
}

// Refuses to replace a file by a report, unless it is empty or looks like an earlier report.
void RefuseForeignReport(const QString& name) {
  QFile file(name);
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return;
  constexpr int kStart = 64;
  const QByteArray start = file.read(kStart).trimmed();
  if (start.isEmpty() || start.startsWith('{') || start.startsWith('[')) return;
  throw CommandError(kExitUsage, QStringLiteral("'%1' exists and is not a report; it is not replaced.").arg(name));
}

}  // namespace

RunCommand::RunCommand()
    : RunCommand(QStringLiteral("run"), QStringLiteral("Runs an action list, or one action, over PDF files.")) {
  AddOption(QStringLiteral("list"), QStringLiteral("The action list: its name in the sequence folder, or a file."),
            QStringLiteral("NAME|FILE.xqq"));
  AddActionOption();
  AddFileArgument();
  AddExample(QStringLiteral("run --list \"My List\" --recursive --output-dir out --report out/report.json archive/"));
  AddExample(QStringLiteral("run --action \"Set Base URL\" --set baseUrlString=https://example.org/ --in-place *.pdf"));
  AddExample(
      QStringLiteral("edit --action \"Set Base URL\" | vorlane-run run --settings - --output-dir out a.pdf b.pdf"));
}

RunCommand::RunCommand(const QString& name, const QString& summary) : BatchCommand(name, summary) {
  AddSettingsOptions();
  AddUncheckedOption();
  AddTemplateOptions();
  AddOption(QStringLiteral("o|output"), QStringLiteral("Writes the result of the one file to this file."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("force"),
            QStringLiteral("Replaces existing files by the results of --output or --output-dir."));
  AddOption(QStringLiteral("d|output-dir"),
            QStringLiteral("Writes the results to this folder, which is made if missing. Of existing files only "
                           "earlier results of the same inputs are replaced; --force replaces others too."),
            QStringLiteral("DIR"));
  AddOption(QStringLiteral("in-place"), QStringLiteral("Replaces the files by the results."));
  AddInputOptions();
  AddOption(QStringLiteral("dry-run"),
            QStringLiteral("Does all but save: prints what would become of each file; nothing is written but the "
                           "report."));
  AddOption(QStringLiteral("backup"),
            QStringLiteral("With --in-place, keeps the original of each file that changes as NAME+SUFFIX. An older "
                           "backup stays: the next one is numbered."),
            QStringLiteral("SUFFIX"));
  AddOption(QStringLiteral("only-if"),
            QStringLiteral("Touches only files without a base URL ('none'), those that the actions would change "
                           "('differs'), or those with this base URL."),
            QStringLiteral("none|differs|URL"));
  AddPasswordOptions();
  AddOption(
      QStringLiteral("report"),
      QStringLiteral(
          "JSON report: an array at the end; '-' or a name ending in .jsonl: a line for each file as it finishes."),
      QStringLiteral("FILE"));
  AddOption(QStringLiteral("resume"),
            QStringLiteral("Leaves out the files that the same job has done according to this earlier report, and that "
                           "are as it left them."),
            QStringLiteral("REPORT"));
  AddWorkerOptions();
  AddOption(QStringLiteral("allow-breaking-signatures"),
            QStringLiteral("Also saves signed documents that can only be rewritten, and certified ones that permit no "
                           "change."));
  AddOption(QStringLiteral("gui"), QStringLiteral("Starts a window system, for actions that paint."));
  AddOption(QStringLiteral("exit-zero"),
            QStringLiteral("Ends with 0 also when documents failed; the report names them."));
  AddOption(QStringLiteral("quiet"), QStringLiteral("Prints errors only."));
  AddToolsOption();
  AddLibraryOption();
}

void RunCommand::CheckAction() const {
  if (IsSet("list") && HasSettings()) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--list' excludes options for an action and its settings."));
  }
  if (IsSet("list") || IsSet("action") || IsSet("settings")) return;
  throw CommandError(kExitUsage, QStringLiteral("Either '--list' or '--action' is needed."));
}

void RunCommand::Check() {
  CheckPasswordOptions();
  CheckAction();
  CheckSettingsOptions();
  Exclude("output-dir", "in-place");
  Exclude("output", "in-place");
  Exclude("output", "output-dir");
  if (!IsSet("output-dir") && !IsSet("in-place") && !IsSet("output")) {
    Refuse("Either '--output-dir' or '--in-place' is needed, or '--output' for one file.");
  }
  RefuseEmpty({"list", "output", "output-dir", "report", "resume", "backup"});
  CheckInputOptions();
  CheckStandardInput({"files-from", "password-file", "settings"});
  CheckOutputOptions();
  if (IsSet("exit-zero") && !IsSet("report")) Refuse("Option '--exit-zero' needs '--report'.");
  CheckWorkerOptions();
}

void RunCommand::CheckOutputOptions() const {
  if (Value("report").endsWith(QLatin1String(".csv"), Qt::CaseInsensitive)) {
    Refuse("Reports are JSON: name it .json or .jsonl; 'vorlane-run report --csv' makes a table of it.");
  }
  if (IsSet("force") && !IsSet("output") && !IsSet("output-dir")) {
    Refuse("Option '--force' needs '--output' or '--output-dir'.");
  }
  CheckCondition();
  if (!IsSet("backup")) return;
  if (!IsSet("in-place")) Refuse("Option '--backup' needs '--in-place'.");
  const QString suffix = Value("backup");
  if (suffix.contains(QLatin1Char('/'))) Refuse("The suffix of '--backup' cannot contain '/'.");
  if (suffix.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
    Refuse("The suffix of '--backup' cannot end in \".pdf\": the next run over the folder would change the backups.");
  }
}

// A mistyped word would silently match no file.
void RunCommand::CheckCondition() const {
  const QString condition = Value("only-if");
  const QStringList words{QStringLiteral("none"), QStringLiteral("differs")};
  const bool isUrl = condition.contains(QLatin1Char(':')) || condition.contains(QLatin1Char('/'));
  if (!IsSet("only-if") || words.contains(condition) || isUrl) return;
  throw CommandError(kExitUsage, QStringLiteral("Option '--only-if' takes none, differs or a URL, not '%1'.%2")
                                     .arg(condition, Suggestion(condition, words)));
}

// A connection to a display does not survive in forked workers.
void RunCommand::PrepareWindowSystem() const {
  if (!IsSet("jobs") || Value("jobs").toInt() > 0) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  } else {
    Command::PrepareWindowSystem();
  }
}

std::vector<ConfiguredAction> RunCommand::LoadActions(ActionCatalog& catalog, QStringList& warnings) const {
  if (IsSet("list")) return LoadList(catalog, warnings);
  return {Configure(catalog, warnings)};
}

std::vector<ConfiguredAction> RunCommand::LoadList(ActionCatalog& catalog, QStringList& warnings) const {
  std::vector<ConfiguredAction> actions;
  const QString file = ListFile();
  const ActionListFile list = ActionList::Read(file, &warnings);
  for (const ActionListFile::Entry& entry : list.entries) {
    actions.push_back({&catalog.Get(entry.actionName), entry.actionName, entry.settings, {}});
    const std::optional<SettingsDescription> description = SettingsDescription::Of(entry.actionName);
    if (!description) continue;
    CheckRequired(*description, entry.settings, file);
    for (const QString& warning : UnknownKeys(*description, entry.settings)) {
      warnings += QStringLiteral("Warning: the action list '%1': %2").arg(file, warning);
    }
  }
  return actions;
}

QString RunCommand::ListFile() const {
  return ActionList::Locate(Value("list"));
}

// Throws CommandError when the options do not fit the inputs.
PlanOptions RunCommand::Plan(const InputList& inputs, const std::vector<ConfiguredAction>& actions) const {
  PlanOptions options;
  options.outputFolder = BytesOf("output-dir").toStdString();
  options.outputFile = BytesOf("output").toStdString();
  options.dryRun = IsSet("dry-run");
  options.replace = IsSet("force");
  if (IsSet("output") && inputs.Count() != 1) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--output' is for one file, but %1 are given; use "
                                                  "'--output-dir'.")
                                       .arg(inputs.Count()));
  }
  if (IsSet("root")) options.root = RealFolder(BytesOf("root").toStdString());
  const QString folderUser = UserOfFolders(actions);
  for (const ConfiguredAction& action : actions) options.needsPathBelow |= !action.templates.isEmpty();
  if (folderUser.isEmpty()) return options;
  for (std::size_t input = 0; input < inputs.Count(); ++input) {
    Interruption::Check();
    if (!inputs.Problem(input).empty() || inputs.PathBelow(options.root, input)) continue;
    const QString file = NativeName::ToText(inputs.File(input));
    throw CommandError(kExitUsage,
                       IsSet("root")
                           ? QStringLiteral("'%1' is not below the folder of '--root'.").arg(file)
                           : QStringLiteral("The value of '%1' uses the folder of '%2', which is not in a folder that "
                                            "is given with '--recursive': '--root DIR' is needed.")
                                 .arg(folderUser, file));
  }
  return options;
}

// The files that the run reads besides the documents.
ProtectedFiles RunCommand::OtherInputs() const {
  ProtectedFiles files;
  if (IsSet("files-from")) {
    const std::string name = BytesOf("files-from").toStdString();
    name == "-" ? files.Add(STDIN_FILENO, "the list of files") : files.Add(name, "the list of files");
  }
  if (IsSet("password-file") && Value("password-file") != QLatin1String("-"))
    files.Add(BytesOf("password-file").toStdString(), "the password file");
  if (IsSet("settings") && Value("settings") != QLatin1String("-")) {
    files.Add(BytesOf("settings").toStdString(), "the settings");
  }
  if (IsSet("list")) files.Add(NativeName::ToBytes(ListFile()).toStdString(), "the action list");
  return files;
}

void RunCommand::CheckReport(const InputList& inputs, const ProtectedFiles& others) const {
  const std::string report = BytesOf("report").toStdString();
  if (report.empty() || report == "-") return;
  const std::optional<FileIdentity> identity = IdentityOf(report);
  const std::string what = identity && inputs.Holds(*identity) ? "an input" : others.What(report);
  if (what.empty()) return RefuseForeignReport(Value("report"));
  throw CommandError(
      kExitUsage,
      QStringLiteral("The report '%1' would overwrite %2.").arg(Value("report"), QString::fromStdString(what)));
}

int RunCommand::Execute() {
  Interruption::Install();
  RunSettings settings;
  settings.processing = Processing();
  settings.memoryLimit = MemoryLimit();
  settings.libraryFile = LibraryFile();
  ActionCatalog catalog(ToolsFolders());
  settings.actions = LoadActions(catalog, warnings_);

  const std::optional<FileIdentity> existingOutput = IdentityOf(BytesOf("output-dir").toStdString());
  InputList inputs(IsSet("recursive"), existingOutput ? &*existingOutput : nullptr);
  CollectInputs(inputs);
  ProtectedFiles protectedFiles = OtherInputs();
  CheckReport(inputs, protectedFiles);
  const PlanOptions options = Plan(inputs, settings.actions);
  return RunOver(inputs, options, protectedFiles, settings);
}

ProcessingOptions RunCommand::Processing() const {
  using Kind = BaseUrlCondition::Kind;
  ProcessingOptions options;
  options.passwords = Passwords();
  options.allowBreakingSignatures = IsSet("allow-breaking-signatures");
  options.dryRun = IsSet("dry-run");
  options.forReport = IsSet("report");
  options.backupSuffix = BytesOf("backup").toStdString();
  if (!IsSet("only-if")) return options;
  const QString condition = Value("only-if");
  if (condition == QLatin1String("none")) {
    options.onlyIf.kind = Kind::kNone;
  } else if (condition == QLatin1String("differs")) {
    options.onlyIf.kind = Kind::kDiffers;
  } else {
    options.onlyIf = {Kind::kIs, UrlAsWritten(condition).toStdWString()};
  }
  return options;
}

ResumedReport RunCommand::ReadEarlierReport(bool isSameFile) const {
  const std::string earlier = BytesOf("resume").toStdString();
  // A job that resumes its own report has none yet in its first run.
  if (earlier.empty() || (isSameFile && !IdentityOf(earlier))) return ResumedReport();
  ResumedReport resumed(earlier);
  if (resumed.TornLines() > 0 && !IsSet("quiet")) {
    Console::Error(
        QStringLiteral("Lines of the report '%1' that were cut off by a crash: %2. Their files are processed again.")
            .arg(Value("resume"))
            .arg(resumed.TornLines()));
  }
  return resumed;
}

void RunCommand::WarnOfRedone(const RunPlan& plan) const {
  const auto warn = [&](std::size_t files, const char* why) {
    if (files == 0 || IsSet("quiet")) return;
    Console::Error(QStringLiteral("Files of the report '%1' that are done again: %2 (%3).")
                       .arg(Value("resume"))
                       .arg(files)
                       .arg(QLatin1String(why)));
  };
  warn(plan.DoneWithoutJob(), "the report does not say with which settings they were done");
  warn(plan.DoneOtherwise(), "they were done with other actions or settings");
  warn(plan.ChangedSince(), "they were changed or removed since");
}

// A shell makes "-o a.pdf b.pdf" of "-o *.pdf".
void RunCommand::RefuseToReplaceOutput(const InputList& inputs, const ResumedReport& resumed) const {
  if (!IsSet("output")) return;
  const std::string output = BytesOf("output").toStdString();
  const std::optional<FileStatus> existing = FileLookup().Get(output);
  if (!existing) return;
  const auto refuse = [&](const char* why) {
    throw CommandError(kExitUsage, QStringLiteral("The output '%1' %2").arg(Value("output"), QLatin1String(why)));
  };
  if (S_ISDIR(existing->mode)) refuse("is a folder; use '--output-dir'.");
  if (inputs.Holds(existing->identity)) refuse("is the input; use '--in-place' to replace it.");
  if (IsSet("force") || resumed.Find(inputs.File(0), output) != nullptr) return;
  refuse("exists already; use '--force' to replace it.");
}

// Names the temporary files that earlier runs left in this run's folders. The user decides whether to remove them.
void RunCommand::NameLeftovers(const InputList& inputs, const RunPlan& plan) const {
  constexpr std::size_t kMostNames = 5;
  std::set<std::string> folders(inputs.FoldersOfNames().begin(), inputs.FoldersOfNames().end());
  for (const std::string& folder : plan.OutputFolders()) folders.insert(folder + '/');
  if (IsSet("output")) folders.insert(FolderOf(BytesOf("output").toStdString()));
  std::set<std::string> names(inputs.Leftovers().begin(), inputs.Leftovers().end());
  for (const std::string& folder : folders) {
    for (const std::string& name : LeftoverFiles::Find(folder)) names.insert(name);
  }
  if (names.empty()) return;
  QStringList shown;
  for (auto name = names.begin(); name != names.end() && shown.size() < static_cast<int>(kMostNames); ++name) {
    shown += NativeName::ToText(*name);
  }
  const QString more = names.size() > kMostNames ? QStringLiteral(" and %1 more").arg(names.size() - kMostNames) : "";
  Console::Error(QStringLiteral("Temporary files of killed or running runs: %1%2. 'vorlane-run clean FOLDER' removes "
                                "those that are older than a day.")
                     .arg(shown.join(QStringLiteral(", ")), more));
}

int RunCommand::RunOver(const InputList& inputs, const PlanOptions& options, ProtectedFiles& protectedFiles,
                        const RunSettings& settings) const {
  const bool dryRun = options.dryRun;
  const std::string reportName = BytesOf("report").toStdString();
  const std::string earlier = BytesOf("resume").toStdString();
  const std::optional<FileIdentity> written = IdentityOf(reportName);
  const bool sameFile = !earlier.empty() && (earlier == reportName || (written && written == IdentityOf(earlier)));
  if (sameFile && dryRun) {
    throw CommandError(kExitUsage, QStringLiteral("A dry run cannot write the report that it resumes."));
  }
  const bool append = sameFile && ReportFile::IsLines(reportName);
  ResumedReport resumed = ReadEarlierReport(sameFile);
  RefuseToReplaceOutput(inputs, resumed);
  if (const std::string& folder = options.outputFolder; !folder.empty()) {
    dryRun ? CheckOutputFolder(folder) : MakeOutputFolder(folder);
  }
  ReportFile report(reportName, append);
  report.Protect(protectedFiles);
  const JobDigest job(settings.actions);
  const RunPlan plan(inputs, options, job, resumed, protectedFiles);
  WarnOfRedone(plan);
  if (!append && !dryRun) {
    resumed.CarryOver([&](const QByteArray& json) {
      report.Add({json.constData(), static_cast<std::size_t>(json.size())});
    });
  }

  // Printed here, so that an error above prints its own line only.
  for (const QString& warning : warnings_) {
    if (!IsSet("quiet")) Console::Error(warning);
  }
  RunReporter reporter(report, inputs.Count(), IsSet("quiet"), dryRun);
  reporter.CountDoneBefore(plan.DoneBefore());
  CallSequenceProc(settings.actions, &CActionInterface::PreSequenceProc, "before");
  for (const FileRecord& record : plan.Settled()) reporter.TakeSettled(record);
  DocumentRun run(settings, plan, reporter);
  if (Jobs() == 0) {
    run.RunHere();
  } else {
    WorkerPool(run, plan.Count(), static_cast<std::size_t>(Jobs()), TimeLimit()).Run();
  }
  const int signal = Interruption::Signal();
  const bool reported = reporter.Finish(signal != 0);
  if (!IsSet("quiet")) NameLeftovers(inputs, plan);
  CallSequenceProc(settings.actions, &CActionInterface::PostSequenceProc, "after");
  if (signal != 0) return kExitSignalBase + signal;
  return reported && (reporter.Failed() == 0 || IsSet("exit-zero")) ? kExitDone : kExitSomeFailed;
}
