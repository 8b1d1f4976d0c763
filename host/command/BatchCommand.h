// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>

#include "host/command/SettingsCommand.h"

class FileQuery;
struct FileQuestion;
class InputList;

// A command that works on many files in worker processes: which files, and what each process may take.
class BatchCommand : public SettingsCommand {
 protected:
  using SettingsCommand::SettingsCommand;

  // --files-from, --recursive.
  void AddInputOptions();
  // FILE, the last of the arguments.
  void AddFileArgument();
  virtual QStringList FileArguments() const { return parser_.positionalArguments(); }
  void CheckInputOptions() const;
  // Throws as InputList::Add and InputList::AddFrom do.
  void CollectInputs(InputList& inputs) const;

  // --jobs, --timeout, --memory.
  void AddWorkerOptions();
  void CheckWorkerOptions();
  // 0: everything in this process.
  int Jobs() const { return jobs_; }
  std::chrono::seconds TimeLimit() const { return std::chrono::seconds(timeout_); }
  std::size_t MemoryLimit() const { return memoryLimit_; }

  // A question with the passwords and limits of the options; the command adds how a file answers it.
  FileQuestion Question() const;
  // Asks all files, in worker processes if there are enough files. Returns the interrupting signal, or 0.
  int Ask(FileQuery& query, std::size_t files) const;

 private:
  int jobs_ = 0;
  int timeout_ = 0;
  std::size_t memoryLimit_ = 0;
};
