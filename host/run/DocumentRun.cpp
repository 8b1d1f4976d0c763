// SPDX-License-Identifier: Apache-2.0
#include "host/run/DocumentRun.h"

#include "host/base/Interruption.h"
#include "host/run/MemoryLimit.h"

void DocumentRun::Begin() {
  library_ = PdfLibrary::Open(settings_.libraryFile);
  MemoryLimit::Set(settings_.memoryLimit);
  processor_ = std::make_unique<DocumentProcessor>(*library_, settings_.actions, settings_.processing);
}

void DocumentRun::RunHere() {
  Begin();
  Interruption::EndAtSecond();
  for (std::size_t item = 0; item < plan_.Count() && Interruption::Signal() == 0; ++item) {
    reporter_.Take(ProcessItem(item));
    reporter_.Flush();
  }
}

FileRecord DocumentRun::ProcessItem(std::size_t item) {
  PlannedFile file = plan_.File(item);
  file.advise = item < kAdvisedFiles;
  return processor_->Process(file);
}

void DocumentRun::Lose(std::size_t item, const std::string& reason) {
  const PlannedFile file = plan_.File(item);
  FileRecord record;
  record.file = file.file;
  record.output = file.output;
  record.status = FileRecord::Status::kFailed;
  record.reason = reason;
  reporter_.Take(record);
}
