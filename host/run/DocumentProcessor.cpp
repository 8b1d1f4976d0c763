// SPDX-License-Identifier: Apache-2.0
#include "host/run/DocumentProcessor.h"

#include <chrono>
#include <exception>

#include "host/base/LibraryReasons.h"
#include "host/base/NativeName.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

std::string Narrow(const std::wstring& text) {
  const QByteArray utf8 = QString::fromStdWString(text).toUtf8();
  return utf8.toStdString();
}

}  // namespace

struct DocumentProcessor::Failure {
  std::string reason;
};

FileRecord DocumentProcessor::Process(const std::string& file, const std::string& output) {
  const auto start = std::chrono::steady_clock::now();
  FileRecord record;
  record.file = file;
  record.output = output;
  const auto failed = [&](const std::string& reason) {
    record.status = FileRecord::Status::kFailed;
    record.reason = reason;
    record.way.clear();
    record.warnings.clear();
    record.baseUrlAfter = record.baseUrlBefore;
  };
  try {
    Load(record);
    RunActions();
    record.baseUrlAfter = library_.GetBaseURL();
    CheckSaving(record);
    Save(record);
  } catch (const Failure& failure) {
    failed(failure.reason);
  } catch (const std::exception& exception) {
    failed(exception.what());
  }
  if (document_ != 0) library_.RemoveDocument(document_);
  document_ = 0;
  record.microseconds =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count();
  return record;
}

void DocumentProcessor::Load(FileRecord& record) {
  if (library_.LoadFromFile(NativeName::ToWide(record.file), options_.password) == 0) {
    throw Failure{LoadingReason(library_.LastErrorCode(), record.file)};
  }
  document_ = library_.SelectedDocument();
  record.baseUrlBefore = library_.GetBaseURL();
}

void DocumentProcessor::RunActions() {
  for (const RunStep& step : steps_) {
    // An action may change the map; the next document starts from the settings of the run again.
    QMap<QString, QVariant> settings = step.settings;
    WorkProcInfoStruct info{&library_, nullptr, nullptr, nullptr, &settings};
    const auto failed = [&](const char* reason) {
      return Failure{"action '" + NativeName::ToBytes(step.name).toStdString() + "': " + reason};
    };
    const int errorBefore = library_.LastErrorCode();
    try {
      step.action->WorkProc(&info);
    } catch (const std::exception& exception) {
      throw failed(exception.what());
    } catch (...) {
      throw failed("unknown exception");
    }
    // WorkProc's result says nothing, so a library call that failed as the action's last one is the only trace of a
    // document that is not what the user asked for.
    const int error = library_.LastErrorCode();
    if (error != kErrorNone && error != errorBefore) throw failed(LibraryReason(error));
    if (library_.SelectedDocument() != document_) library_.SelectDocument(document_);
  }
}

// How the document would be saved now, and whether policy lets it.
void DocumentProcessor::CheckSaving(FileRecord& record) {
  record.way = Narrow(library_.GetInformation(kInformationWayOfSaving));
  if (record.way.empty()) record.way = "unknown";
  if (record.way == "unchanged" || record.way == "unknown") return;

  const std::wstring certification = library_.GetInformation(kInformationCertification);
  if (certification == L"1") record.warnings.push_back("the document's certification forbids changes");
  if (record.way != "rewrite") return;

  const std::string why = Narrow(library_.GetInformation(kInformationWhyRewrite));
  const std::wstring signatures = library_.GetInformation(kInformationSignatures);
  const bool isSigned = !signatures.empty() && signatures != L"0";
  const std::string rewritten = why.empty() ? "" : " (" + why + ")";
  if (isSigned && !options_.allowBreakingSignatures) {
    throw Failure{"signed, and saving would break the signatures: the file must be rewritten" + rewritten};
  }
  record.warnings.push_back("the file was rewritten" + rewritten + (isSigned ? ", which breaks its signatures" : ""));
}

void DocumentProcessor::Save(FileRecord& record) {
  const std::wstring output = NativeName::ToWide(record.output);
  if (library_.SaveToFile(output) != 0) return NoteLastWay(record);
  int error = library_.LastErrorCode();
  // Only the attempt showed that a signed document must be rewritten; the next attempt would do so.
  if (error == kErrorCannotAppend) {
    if (!options_.allowBreakingSignatures) throw Failure{"signed, and saving would break the signatures"};
    record.way = "rewrite";
    record.warnings.push_back("the file was rewritten, which breaks its signatures");
    error = library_.SaveToFile(output) != 0 ? kErrorNone : library_.LastErrorCode();
  }
  if (error != kErrorNone) throw Failure{LibraryReason(error)};
}

// An update that did not read back has been replaced by a rewritten file, against the plan.
void DocumentProcessor::NoteLastWay(FileRecord& record) {
  if (record.way != "incremental" || Narrow(library_.GetInformation(kInformationLastWay)) != "rewrite") return;
  record.way = "rewrite";
  record.warnings.push_back("the file was rewritten (an appended update was not readable)");
}
