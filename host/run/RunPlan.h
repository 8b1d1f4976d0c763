// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/files/InputList.h"
#include "host/files/OutputNames.h"
#include "host/files/ProtectedFiles.h"
#include "host/run/FileRecord.h"
#include "host/run/JobDigest.h"
#include "host/run/ResumedReport.h"

// One file to process and where its result goes.
struct PlannedFile {
  std::string file;
  std::string output;
  std::string job;        // see JobDigest
  std::string pathBelow;  // what values for this file are made of; only where a run makes some
  // A new base URL by which viewers lead to different places gets a warning, if the file is small.
  bool advise = false;
};

// What a plan depends on beside the inputs.
struct PlanOptions {
  std::string outputFolder;     // an existing folder, or empty for the next or, when that is empty too, in place
  std::string outputFile;       // for the one input there is
  bool needsPathBelow = false;  // values are made for each file
  std::string root;             // see InputList::PathBelow
  bool dryRun = false;          // no folder is made, and the output's need not exist
  bool replace = false;         // results replace all files in the output folder, not only earlier results
};

// Decides for every input, in their order, what is to be done: process it, or settle it at once with a record. The plan
// is whole before the first file is processed, so that worker processes can take files from it by number.
class RunPlan {
 public:
  // Makes the folders of the outputs. What the resumed run has done and this one does again is forgotten there. Keeps
  // references to inputs and job. Throws as Interruption::Check does.
  RunPlan(const InputList& inputs, const PlanOptions& options, const JobDigest& job, ResumedReport& resumed,
          const ProtectedFiles& protectedFiles);

  // The files to process are numbered from 0.
  std::size_t Count() const { return items_.size(); }
  PlannedFile File(std::size_t item) const;
  // The folders below the output folder that results go to, without a slash at their ends; none in a dry run.
  const std::unordered_set<std::string>& OutputFolders() const { return madeFolders_; }
  // The inputs that are not to be processed.
  const std::vector<FileRecord>& Settled() const { return settled_; }
  // How many the resumed run has done; there are records of them already.
  std::size_t DoneBefore() const { return doneBefore_; }
  // How many files that the resumed run has done are done again, by reason: its report does not name the job, it was
  // another job, the files were changed since.
  std::size_t DoneWithoutJob() const { return doneWithoutJob_; }
  std::size_t DoneOtherwise() const { return doneOtherwise_; }
  std::size_t ChangedSince() const { return changedSince_; }

 private:
  struct Item {
    std::uint32_t input;
    std::uint32_t copyNumber;
  };

  void Add(std::size_t input, ResumedReport& resumed, const ProtectedFiles& protectedFiles);
  bool IsDone(std::size_t input, const std::string& output, ResumedReport& resumed);
  std::string OutputOf(std::uint32_t input, std::uint32_t copyNumber) const;
  std::string PathBelow(std::size_t input) const;
  void Settle(std::size_t input, FileRecord::Status status, const std::string& reason);
  std::string Overwrites(std::size_t input, const std::string& output, const ResumedReport& resumed,
                         const ProtectedFiles& protectedFiles);
  bool MayReplace(std::size_t input, const std::string& output, const ResumedReport& resumed) const;
  bool MakeParent(const std::string& output);

  const InputList& inputs_;
  PlanOptions options_;
  const JobDigest& job_;
  std::optional<OutputNames> names_;
  std::vector<Item> items_;
  std::vector<FileRecord> settled_;
  std::size_t doneBefore_ = 0;
  std::size_t doneWithoutJob_ = 0;
  std::size_t doneOtherwise_ = 0;
  std::size_t changedSince_ = 0;
  FileLookup lookup_;
  std::unordered_set<std::string> madeFolders_;
  std::string lastParent_;  // one of them
  bool outputFolderWasEmpty_ = false;
};
