// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "host/run/DocumentProcessor.h"

// What a worker process is forked with.
struct WorkerSettings {
  std::wstring libraryFile;
  const std::vector<RunStep>& steps;
  ProcessingOptions processing;
  std::size_t memoryLimit;  // bytes for documents; 0: none
  bool reported;            // somebody reads the outcomes' JSON
};

// The fixed part of a worker's answer; the other fields are texts.
struct OutcomeFacts {
  FileRecord::Status status;
  bool unchanged;
  long long microseconds;
};

// A worker process's whole life: takes jobs from one pipe, answers each with an outcome on the other.
// The first message tells whether the PDF library was loaded.
namespace Worker {

inline constexpr const char* kReady = "ready";

// Ends when the pipe of jobs does, or before the next job once `stop` is set. Returns the process's exit code.
int Run(const WorkerSettings& settings, int jobs, int outcomes, const std::atomic<bool>& stop);

}  // namespace Worker
