// SPDX-License-Identifier: Apache-2.0
#include "host/run/RunPlan.h"

#include <filesystem>
#include <utility>

#include "host/base/Interruption.h"
#include "host/files/EarlierResult.h"

RunPlan::RunPlan(const InputList& inputs, const PlanOptions& options, const JobDigest& job, ResumedReport& resumed,
                 const ProtectedFiles& protectedFiles)
    : inputs_(inputs), options_(options), job_(job) {
  if (!options_.outputFolder.empty()) {
    names_.emplace(options_.outputFolder);
    std::error_code ignored;
    outputFolderWasEmpty_ = std::filesystem::is_empty(options_.outputFolder, ignored);
  }
  items_.reserve(inputs.Count());
  for (std::size_t input = 0; input < inputs.Count(); ++input) {
    Interruption::Check();
    Add(input, resumed, protectedFiles);
  }
}

void RunPlan::Add(std::size_t input, ResumedReport& resumed, const ProtectedFiles& protectedFiles) {
  using Status = FileRecord::Status;
  if (const std::string problem = inputs_.Problem(input); !problem.empty()) {
    return Settle(input, Status::kFailed, problem);
  }
  if (const long same = inputs_.SameFileAs(input); same >= 0) {
    return Settle(input, Status::kSkipped, "the same file as " + inputs_.File(static_cast<std::size_t>(same)));
  }
  Item item{static_cast<std::uint32_t>(input), 0};
  if (names_) item.copyNumber = names_->Take(inputs_.Relative(input));
  const std::string output = OutputOf(item.input, item.copyNumber);
  if (names_ || !options_.outputFile.empty()) {
    if (const std::string what = Overwrites(input, output, resumed, protectedFiles); !what.empty()) {
      return Settle(input, Status::kFailed, "its output " + output + " would overwrite " + what);
    }
    if (names_ && !MakeParent(output)) {
      return Settle(input, Status::kFailed, "cannot make the folder of its output " + output);
    }
  }
  if (IsDone(input, output, resumed)) {
    ++doneBefore_;
  } else {
    items_.push_back(item);
  }
}

// Whether the same job has saved this output, and it is as it was left.
bool RunPlan::IsDone(std::size_t input, const std::string& output, ResumedReport& resumed) {
  if (resumed.Count() == 0) return false;
  const std::string file = inputs_.File(input);
  const ResumedReport::Result* const result = resumed.Find(file, output);
  if (result == nullptr) return false;
  const FileState now = FileState::Of(output);
  const bool sameJob = result->job == job_.Of(PathBelow(input));
  if (sameJob && now.size == result->size && now.TimeText() == result->time) return true;
  ++(result->job.empty() ? doneWithoutJob_ : sameJob ? changedSince_ : doneOtherwise_);
  resumed.Forget(file, output);
  return false;
}

void RunPlan::Settle(std::size_t input, FileRecord::Status status, const std::string& reason) {
  FileRecord record;
  record.file = inputs_.File(input);
  record.status = status;
  record.reason = reason;
  settled_.push_back(std::move(record));
}

std::string RunPlan::OutputOf(std::uint32_t input, std::uint32_t copyNumber) const {
  if (names_) return names_->Name(inputs_.Relative(input), copyNumber);
  return options_.outputFile.empty() ? inputs_.File(input) : options_.outputFile;
}

PlannedFile RunPlan::File(std::size_t item) const {
  const auto [input, copyNumber] = items_[item];
  const std::string pathBelow = PathBelow(input);
  return {inputs_.File(input), OutputOf(input, copyNumber), job_.Of(pathBelow), pathBelow};
}

std::string RunPlan::PathBelow(std::size_t input) const {
  return options_.needsPathBelow ? inputs_.PathBelow(options_.root, input).value_or("") : std::string();
}

// Inputs from folders keep their path below that folder.
bool RunPlan::MakeParent(const std::string& output) {
  if (options_.dryRun) return true;
  const std::size_t end = output.rfind('/');
  if (output.compare(0, end, lastParent_) == 0) return true;
  std::string parent = output.substr(0, end);
  if (madeFolders_.count(parent) == 0) {
    std::error_code error;
    std::filesystem::create_directories(parent, error);
    if (error) return false;
    madeFolders_.insert(parent);
  }
  lastParent_ = std::move(parent);
  return true;
}

// Whether a file that is there may be replaced by the result: the user says so, or a run has made it of the same input.
bool RunPlan::MayReplace(std::size_t input, const std::string& output, const ResumedReport& resumed) const {
  if (!names_ || options_.replace) return true;
  const std::string file = inputs_.File(input);
  return resumed.Find(file, output) != nullptr || IsEarlierResult(output, file);
}

// What the output would overwrite that it must not, or an empty text.
std::string RunPlan::Overwrites(std::size_t input, const std::string& output, const ResumedReport& resumed,
                                const ProtectedFiles& protectedFiles) {
  const std::optional<FileStatus> status = outputFolderWasEmpty_ ? std::nullopt : lookup_.Get(output);
  if (status) {
    if (inputs_.Holds(status->identity)) return "an input";
    if (std::string what = protectedFiles.What(status->identity); !what.empty()) return what;
    const bool mayReplace = !S_ISREG(status->mode) || MayReplace(input, output, resumed);
    return mayReplace ? "" : "a file that is not an earlier result of it (--force replaces it)";
  }
  // A protected file may come to be there, or where a link leads that is there.
  std::error_code ignored;
  const bool isLink = !outputFolderWasEmpty_ && std::filesystem::is_symlink(output, ignored);
  return isLink || protectedFiles.MayHold(output) ? protectedFiles.What(output) : std::string();
}
