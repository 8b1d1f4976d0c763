// SPDX-License-Identifier: Apache-2.0
#include "host/run/Worker.h"

#include "host/base/Console.h"
#include "host/base/ExitCode.h"
#include "host/run/Frames.h"
#include "host/run/MemoryLimit.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

namespace {

void AppendOutcome(std::string& message, const FileRecord& record, bool reported) {
  std::string warnings;
  for (const std::string& warning : record.warnings) warnings += warning + '\n';
  const OutcomeFacts facts{record.status, record.Unchanged(), record.microseconds};
  Frames::Append(message, {std::string_view(reinterpret_cast<const char*>(&facts), sizeof facts), record.reason,
                           warnings, reported ? record.ToJson() : std::string()});
}

}  // namespace

int Worker::Run(const WorkerSettings& settings, int jobs, int outcomes, const std::atomic<bool>& stop) {
  HalvexPDFLibraryCPDylibCPP1311 library(settings.libraryFile);
  if (!library.LibraryLoaded()) return kExitNotLoaded;
  MemoryLimit::Set(settings.memoryLimit);
  std::string message;
  Frames::Append(message, {kReady});
  if (!Console::WriteAll(outcomes, message)) return kExitDone;

  DocumentProcessor processor(library, settings.steps, settings.processing);
  Frames::Reader reader;
  Frames::Fields job;
  while (reader.Fill(jobs)) {
    while (reader.Next(job)) {
      if (stop.load(std::memory_order_relaxed)) return kExitDone;
      message.clear();
      AppendOutcome(message, processor.Process(std::string(job[0]), std::string(job[1])), settings.reported);
      // Nobody listens any more: the main process is gone.
      if (!Console::WriteAll(outcomes, message)) return kExitDone;
    }
  }
  return kExitDone;
}
