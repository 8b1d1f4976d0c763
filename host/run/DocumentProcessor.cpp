// SPDX-License-Identifier: Apache-2.0
#include "host/run/DocumentProcessor.h"

#include <sys/stat.h>
#include <algorithm>

#include <chrono>
#include <cwchar>
#include <exception>
#include <thread>
#include <utility>

#include "host/base/NativeName.h"
#include "host/files/BackupFile.h"
#include "host/links/LinkAdvice.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

constexpr off_t kLargestAdvised = 4 << 20;  // bytes
constexpr int kMostAttempts = 10;
constexpr std::chrono::milliseconds kPause(2);  // grows with each attempt

// A number of the library's facts; `none` for an empty answer.
int NumberOf(const std::wstring& answer, int none) {
  return answer.empty() ? none : static_cast<int>(std::wcstol(answer.c_str(), nullptr, 10));
}

}  // namespace

struct DocumentProcessor::Failure {
  std::string reason;
  int error = kErrorNone;
};

struct DocumentProcessor::Unwanted {
  std::string reason;
};

FileRecord DocumentProcessor::Process(const PlannedFile& file) {
  const auto start = std::chrono::steady_clock::now();
  FileRecord record;
  const auto failed = [&](const std::string& reason) {
    record.status = FileRecord::Status::kFailed;
    record.reason = reason;
    record.saveMode.clear();
    record.backup.clear();
    record.warnings.clear();
    record.baseUrlAfter = record.baseUrlBefore;
  };
  for (int attempt = 1;; ++attempt) {
    record = FileRecord();
    record.file = file.file;
    record.output = file.output;
    record.job = file.job;
    bool again = false;
    try {
      ProcessOnce(record, file);
    } catch (const Failure& failure) {
      failed(failure.reason);
      again = failure.error == kErrorSourceChanged && attempt < kMostAttempts;
    } catch (const Unwanted& unwanted) {
      failed(unwanted.reason);
      record.status = FileRecord::Status::kSkipped;
      record.output.clear();
    } catch (const std::exception& exception) {
      failed(exception.what());
    }
    if (document_ != 0) library_.RemoveDocument(std::exchange(document_, 0));
    if (!again) break;
    std::this_thread::sleep_for(kPause * attempt);
  }
  record.microseconds =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count();
  return record;
}

void DocumentProcessor::ProcessOnce(FileRecord& record, const PlannedFile& file) {
  Load(record);
  CheckCondition(record, false);
  RunActions(record, file);
  record.baseUrlAfter = library_.GetBaseURL();
  record.saveMode = PdfLibrary::ToUtf8(library_.GetInformation(kInformationSaveMode));
  if (record.saveMode.empty()) record.saveMode = "unknown";
  CheckCondition(record, true);
  if (file.advise) Advise(record);
  CheckSaving(record);
  if (!options_.dryRun) return Save(record);
  record.status = record.Unchanged() ? FileRecord::Status::kUnchanged : FileRecord::Status::kWouldChange;
  const bool backup = !options_.backupSuffix.empty() && !record.Unchanged();
  if (backup) record.backup = BackupFile::NextName(record.file, options_.backupSuffix);
}

void DocumentProcessor::Load(FileRecord& record) {
  const std::string problem = PdfLibrary::LoadDocument(library_, record.file, options_.passwords);
  if (!problem.empty()) throw Failure{problem, library_.LastErrorCode()};
  document_ = library_.SelectedDocument();
  record.baseUrlBefore = library_.GetBaseURL();
  record.signatures = NumberOf(library_.GetInformation(kInformationSignatures), FileRecord::kUnknown);
  record.certification = NumberOf(library_.GetInformation(kInformationCertification), 0);
}

// Throws Unwanted when the run is not about this document.
void DocumentProcessor::CheckCondition(const FileRecord& record, bool actionsRan) const {
  using Kind = BaseUrlCondition::Kind;
  const BaseUrlCondition& condition = options_.onlyIf;
  const auto has = [&] { return "its base URL is '" + PdfLibrary::ToUtf8(record.baseUrlBefore) + "'"; };
  if (actionsRan) {
    const bool sameUrl = record.baseUrlAfter == record.baseUrlBefore;
    const bool changed = record.saveMode == "unknown" ? !sameUrl : !record.Unchanged();
    if (condition.kind != Kind::kDiffers || changed) return;
    throw Unwanted{"the actions change nothing in it"};
  }
  if (condition.kind == Kind::kNone && !record.baseUrlBefore.empty()) throw Unwanted{has()};
  if (condition.kind == Kind::kIs && record.baseUrlBefore != condition.value) {
    throw Unwanted{record.baseUrlBefore.empty() ? "it has no base URL" : has()};
  }
}

QMap<QString, QVariant> DocumentProcessor::SettingsFor(const ConfiguredAction& action, const PlannedFile& file) const {
  QMap<QString, QVariant> settings = action.settings;
  for (auto each = action.templates.begin(); each != action.templates.end(); ++each) {
    const QString value = each->Fill(file.pathBelow);
    if (value.isEmpty()) {
      throw Failure{"the value for this file of '" + NativeName::ToBytes(each.key()).toStdString() + "' is empty"};
    }
    settings.insert(each.key(), value);
  }
  return settings;
}

void DocumentProcessor::RunActions(FileRecord& record, const PlannedFile& file) {
  for (const ConfiguredAction& action : actions_) {
    // An action may change the map; the next document starts from the settings of the run again.
    QMap<QString, QVariant> settings = SettingsFor(action, file);
    WorkProcInfoStruct info{&library_, nullptr, nullptr, nullptr, &settings};
    const auto failed = [&](const char* reason, int error = kErrorNone) {
      return Failure{"action '" + NativeName::ToBytes(action.name).toStdString() + "': " + reason, error};
    };
    const int errorBefore = library_.LastErrorCode();
    try {
      action.action->WorkProc(&info);
    } catch (const std::exception& exception) {
      throw failed(exception.what());
    } catch (...) {
      throw failed("unknown exception");
    }
    // WorkProc's result says nothing, so a library call that failed as the action's last one is the only trace of a
    // document that is not what the user asked for.
    const int error = library_.LastErrorCode();
    if (error != kErrorNone && error != errorBefore) throw failed(PdfLibrary::ErrorMessage(error), error);
    if (library_.SelectedDocument() != document_) library_.SelectDocument(document_);
  }
  const QString warnings = QString::fromStdWString(library_.GetInformation(kInformationWarnings));
  for (const QString& warning : warnings.split('\n', Qt::SkipEmptyParts)) {
    record.warnings.push_back(warning.toStdString());
  }
}

void DocumentProcessor::Advise(FileRecord& record) {
  if (record.baseUrlAfter.empty() || record.baseUrlAfter == record.baseUrlBefore) return;
  struct stat status = {};
  if (stat(record.file.c_str(), &status) != 0 || status.st_size > kLargestAdvised) return;
  const std::string advice = LinkAdvice(library_, QString::fromStdWString(record.baseUrlAfter));
  if (!advice.empty()) record.warnings.push_back(advice);
}

// Whether policy lets the document be saved as planned.
void DocumentProcessor::CheckSaving(FileRecord& record) {
  if (record.saveMode == "unchanged" || record.saveMode == "unknown") return;

  CheckSignatures(record);
}

// Changes that signers ruled out need the user's consent.
void DocumentProcessor::CheckSignatures(FileRecord& record) {
  const bool isSigned = record.signatures > 0;
  if (record.certification == 1 && !options_.allowBreakingSignatures) {
    throw Failure{"its certification permits no change"};
  }
  if (record.certification > 0) {
    const char* const permitted[] = {"no change", "only filling in forms", "only filling in forms and annotating"};
    record.warnings.push_back(std::string("its certification permits ") +
                              permitted[std::clamp(record.certification, 1, 3) - 1] +
                              ": validators may report the change");
  }
  if (record.saveMode != "rewrite") return;

  const std::string why = PdfLibrary::ToUtf8(library_.GetInformation(kInformationWhyRewrite));
  const std::string rewritten = why.empty() ? "" : " (" + why + ")";
  if (isSigned && !options_.allowBreakingSignatures) {
    throw Failure{"signed, and saving would break the signatures: the file must be rewritten" + rewritten};
  }
  record.warnings.push_back("the whole file is rewritten" + rewritten +
                            (isSigned ? ", which breaks its signatures" : ""));
}

void DocumentProcessor::Save(FileRecord& record) {
  const bool wanted = !options_.backupSuffix.empty() && !record.Unchanged();
  BackupFile backup = wanted ? BackupFile(record.file, options_.backupSuffix) : BackupFile();
  SaveOutput(record);
  backup.Keep();
  record.backup = backup.Name();
  if (options_.forReport) record.outputState = FileState::Of(record.output);
}

void DocumentProcessor::SaveOutput(FileRecord& record) {
  const std::wstring output = NativeName::ToWide(record.output);
  if (library_.SaveToFile(output) != 0) return NoteLastSaveMode(record);
  int error = library_.LastErrorCode();
  // Only the attempt showed that a signed document must be rewritten; the next attempt would do so.
  if (error == kErrorCannotAppend) {
    if (!options_.allowBreakingSignatures) throw Failure{"signed, and saving would break the signatures"};
    record.saveMode = "rewrite";
    record.warnings.push_back("the whole file is rewritten, which breaks its signatures");
    error = library_.SaveToFile(output) != 0 ? kErrorNone : library_.LastErrorCode();
  }
  if (error != kErrorNone) throw Failure{PdfLibrary::SavingMessage(library_, error, record.output), error};
}

// An update that did not read back has been replaced by a rewritten file, against the plan.
void DocumentProcessor::NoteLastSaveMode(FileRecord& record) {
  if (record.saveMode != "incremental" || library_.GetInformation(kInformationLastSaveMode) != L"rewrite") return;
  record.saveMode = "rewrite";
  record.warnings.push_back("the whole file is rewritten (an appended update was not readable)");
}
