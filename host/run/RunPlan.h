// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "host/files/InputList.h"
#include "host/files/OutputNames.h"
#include "host/run/FileRecord.h"
#include "host/run/ResumedReport.h"

// One file to process.
struct Job {
  std::string file;
  std::string output;
};

// Decides, input by input and in their order, what is to be done: process it, or settle it at once with a record.
class RunPlan {
 public:
  // `outputFolder` empty means in place; else it is an existing folder. Keeps references to both other arguments.
  RunPlan(const InputList& inputs, const std::string& outputFolder, const ResumedReport& resumed);

  struct Step {
    Job job;
    std::optional<FileRecord> settled;
    bool doneBefore = false;  // by the run that is resumed; there is a record of it already
  };
  // The next input's step, or nothing when all inputs are planned.
  std::optional<Step> Next();
  std::size_t Remaining() const { return inputs_.Count() - next_; }

 private:
  std::string OutputFor(std::size_t index);
  bool MakeParent(const std::string& output);
  bool OverwritesInput(const std::string& output) const;

  const InputList& inputs_;
  const ResumedReport& resumed_;
  std::optional<OutputNames> names_;
  std::unordered_set<std::string> madeFolders_;
  bool outputFolderWasEmpty_ = false;
  std::size_t next_ = 0;
};
