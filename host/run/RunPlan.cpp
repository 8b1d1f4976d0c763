// SPDX-License-Identifier: Apache-2.0
#include "host/run/RunPlan.h"

#include <filesystem>

#include "host/files/FileLookup.h"

namespace {

RunPlan::Step Settled(const Job& job, FileRecord::Status status, const std::string& reason) {
  RunPlan::Step step{job, FileRecord(), false};
  step.settled->file = job.file;
  step.settled->status = status;
  step.settled->reason = reason;
  return step;
}

RunPlan::Step Failed(const Job& job, const std::string& reason) {
  return Settled(job, FileRecord::Status::kFailed, reason);
}

}  // namespace

RunPlan::RunPlan(const InputList& inputs, const std::string& outputFolder, const ResumedReport& resumed)
    : inputs_(inputs), resumed_(resumed) {
  if (outputFolder.empty()) return;
  names_.emplace(outputFolder);
  std::error_code ignored;
  outputFolderWasEmpty_ = std::filesystem::is_empty(outputFolder, ignored);
}

std::optional<RunPlan::Step> RunPlan::Next() {
  if (next_ == inputs_.Count()) return std::nullopt;
  const std::size_t index = next_++;
  Job job{inputs_.File(index), {}};
  if (inputs_.IsFolder(index)) {
    return Failed(
        job, inputs_.IsRecursive() ? "cannot read the folder" : "is a folder (use --recursive for the files below it)");
  }
  if (const long same = inputs_.SameFileAs(index); same >= 0) {
    return Settled(job, FileRecord::Status::kSkipped,
                   "the same file as " + inputs_.File(static_cast<std::size_t>(same)));
  }
  job.output = OutputFor(index);
  if (names_) {
    if (OverwritesInput(job.output)) return Failed(job, "its output " + job.output + " would overwrite an input");
    if (!MakeParent(job.output)) return Failed(job, "cannot make the folder of its output " + job.output);
  }
  if (resumed_.Done(job.file, job.output)) return Step{job, std::nullopt, true};
  return Step{job, std::nullopt, false};
}

std::string RunPlan::OutputFor(std::size_t index) {
  return names_ ? names_->For(inputs_.Relative(index)) : inputs_.File(index);
}

// Inputs from folders keep their path below that folder.
bool RunPlan::MakeParent(const std::string& output) {
  const std::string parent = output.substr(0, output.rfind('/'));
  if (!madeFolders_.insert(parent).second) return true;
  std::error_code error;
  std::filesystem::create_directories(parent, error);
  return !error;
}

bool RunPlan::OverwritesInput(const std::string& output) const {
  if (outputFolderWasEmpty_) return false;
  const std::optional<FileStatus> status = FileLookup().Get(output);
  return status && inputs_.Holds(status->identity);
}
