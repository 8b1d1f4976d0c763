// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "host/base/PdfLibrary.h"
#include "host/files/InputList.h"
#include "host/run/ProgressBar.h"
#include "host/run/WorkerTask.h"

// What is asked of each file, and how its failure is shown.
struct FileQuestion {
  // Takes lines for the standard output.
  using Print = std::function<void(std::string_view)>;

  std::wstring libraryFile;
  std::vector<std::wstring> passwords;
  std::size_t memoryLimit = 0;  // bytes that documents may take in each process; 0: no limit
  // Prints the answer of the library's selected document, at once or bit by bit. Called in a worker process.
  std::function<void(PdfLibrary::Wrapper&, const std::string& file, const Print&)> answer;
  // The lines for a file that cannot be read. Not set: the reason goes to the standard error.
  std::function<std::string(const std::string& file, const std::string& error)> failure;
  // Each answer names its file: where another program may read them as they come, none waits long for an earlier file.
  bool prompt = false;
};

// Asks the same of many files, each of which is only read, and prints the answers in the order of the inputs. Prompt
// answers keep the order in a regular file only; elsewhere they wait at most kLongestWait for an earlier one. A long
// answer is not held in memory when it is made in this process, and once in each process otherwise.
class FileQuery : public WorkerTask {
 public:
  static constexpr std::chrono::milliseconds kLongestWait{1000};
  using Clock = std::chrono::steady_clock;

  // Keeps references. `now` is the time that is waited by.
  FileQuery(const InputList& inputs, const FileQuestion& question,
            std::function<Clock::time_point()> now = &Clock::now);

  // One file after another; answers are printed as they are made. Throws as Begin and Flush do.
  void RunHere();
  // Whether every file was read, as far as answers were taken.
  bool IsComplete() const { return !anyFailed_; }
  // Call at the end, also after an interruption: prints what is left and takes the progress bar away. Throws as Flush.
  void Finish();

  void Begin() override;
  std::string Work(std::size_t item) override;
  void Take(std::size_t item, std::string_view result) override;
  void Lose(std::size_t item, const std::string& reason) override;
  // Throws CommandError(kExitSomeFailed) when the standard output cannot be written.
  void Flush() override;

 protected:
  // What a worker process reports of the file that it has asked last, and how the main process takes it.
  virtual std::string TakeNotes() { return {}; }
  virtual void AddNotes(std::string_view) {}

 private:
  struct Answer {
    std::string text;
    std::string error;
  };

  std::string AskFile(std::size_t item, const FileQuestion::Print& print);
  void Settle(std::size_t item, std::string_view text, std::string_view error);
  void PrintEarly();
  void Print(std::size_t item, std::string_view text, std::string_view error);
  void PrintText(std::string_view text);
  void Write(std::string_view text);
  void WriteOutput();

  const InputList& inputs_;
  const FileQuestion& question_;
  std::unique_ptr<PdfLibrary::Wrapper> library_;
  std::map<std::size_t, Answer> early_;  // answers before which another is missing
  std::set<std::size_t> ahead_;          // answers that are printed already although another is missing
  bool readAsTheyCome_;                  // the standard output is no regular file
  std::size_t next_ = 0;
  std::function<Clock::time_point()> now_;
  Clock::time_point nextSince_;
  std::size_t settled_ = 0;
  std::string output_;
  bool anyFailed_ = false;
  ProgressBar progress_;
};
