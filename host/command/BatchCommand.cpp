// SPDX-License-Identifier: Apache-2.0
#include "host/command/BatchCommand.h"

#include <unistd.h>

#include <algorithm>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/files/InputList.h"
#include "host/run/FileQuery.h"
#include "host/run/WorkerPool.h"

namespace {

constexpr int kMostJobs = 1024;
constexpr int kUsualSeconds = 900;
constexpr int kMostSeconds = 1000000;
constexpr int kUsualMebibytes = 4096;
constexpr int kMostMebibytes = 1 << 20;

int Cores() {
  return static_cast<int>(std::clamp<long>(sysconf(_SC_NPROCESSORS_ONLN), 1, kMostJobs));
}

}  // namespace

void BatchCommand::AddInputOptions() {
  AddOption(QStringLiteral("files-from"),
            QStringLiteral("Reads more names from a file, or '-': one a line, or NUL-separated."),
            QStringLiteral("FILE"));
  AddOption(QStringLiteral("recursive"), QStringLiteral("A folder means the PDF files below it."));
}

void BatchCommand::AddFileArgument() {
  parser_.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("PDF files, or folders with --recursive."),
                                QStringLiteral("FILE..."));
}

void BatchCommand::CheckInputOptions() const {
  RefuseEmpty({"files-from"});
  if (FileArguments().isEmpty() && !IsSet("files-from")) {
    throw CommandError(kExitUsage, QStringLiteral("No file is given."));
  }
}

void BatchCommand::CollectInputs(InputList& inputs) const {
  for (const QString& file : FileArguments()) inputs.Add(NativeName::ToBytes(file).toStdString());
  if (IsSet("files-from")) inputs.AddFrom(BytesOf("files-from").toStdString());
  for (const std::string& folder : inputs.EmptyFolders()) Console::ErrorAbout(folder, "no PDF file is below it");
}

void BatchCommand::AddWorkerOptions() {
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
}

void BatchCommand::CheckWorkerOptions() {
  jobs_ = Number("jobs", Cores(), 0, kMostJobs);
  timeout_ = Number("timeout", kUsualSeconds, 0, kMostSeconds);
  memoryLimit_ = static_cast<std::size_t>(Number("memory", kUsualMebibytes, 0, kMostMebibytes)) << 20;
  if (IsSet("timeout") && timeout_ > 0 && jobs_ == 0) {
    throw CommandError(kExitUsage,
                       QStringLiteral("Option '--timeout' needs worker processes, but '--jobs 0' forbids them."));
  }
}

FileQuestion BatchCommand::Question() const {
  FileQuestion question;
  question.libraryFile = LibraryFile();
  question.passwords = Passwords();
  question.memoryLimit = MemoryLimit();
  question.prompt = IsSet("json");
  return question;
}

int BatchCommand::Ask(FileQuery& query, std::size_t files) const {
  // To start worker processes takes longer than to read one file.
  const bool here = Jobs() == 0 || (files == 1 && !IsSet("jobs") && !IsSet("timeout"));
  if (here) {
    query.RunHere();
  } else {
    Interruption::Install();
    WorkerPool(query, files, static_cast<std::size_t>(Jobs()), TimeLimit()).Run();
  }
  query.Finish();
  return Interruption::Signal();
}

void BatchCommand::RefuseEmpty(std::initializer_list<const char*> names) const {
  for (const char* name : names) {
    if (IsSet(name) && Value(name).isEmpty()) {
      throw CommandError(kExitUsage, QStringLiteral("Option '--%1' needs a name.").arg(QLatin1String(name)));
    }
  }
}
