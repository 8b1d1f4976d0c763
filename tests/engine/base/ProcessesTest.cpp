// SPDX-License-Identifier: Apache-2.0
// Processes that save the same files at once. VORLANE_TEST_SAVES asks for a longer run.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "tests/engine/base/BaseTools.h"
#include "tests/engine/base/FailingSystem.h"
#include "tests/support/Files.h"

namespace fs = std::filesystem;
using engine::InputFile;
using engine::OutputFile;

namespace {

constexpr int kProcesses = 3;
constexpr int kFiles = 4;

int Saves() {
  const char* asked = std::getenv("VORLANE_TEST_SAVES");
  return asked != nullptr ? std::atoi(asked) : 60;
}

void Append(const std::string& path, const std::string& bytes) {
  const auto source = InputFile::Open(path);
  OutputFile output(path);
  output.CopyFrom(*source);
  output.Write(bytes);
  output.Commit();
}

std::string SharedFile(int save) {
  return "shared/" + std::to_string(save % kFiles);
}

std::string LineOf(int process, int save) {
  return std::to_string(process) + ':' + std::to_string(save) + '\n';
}

// Each save until it is done; counts how often another process was faster.
void RunProcess(int process) {
  int refused = 0;
  for (int save = 0; save < Saves(); ++save) {
    const std::string path = SharedFile(save);
    const std::string line = LineOf(process, save);
    while (CodeOf([&] { Append(path, line); }) == kErrorSourceChanged) ++refused;
  }
  WriteFile("refused." + std::to_string(process), std::to_string(refused));
}

// A program that neither locks nor checks.
void RunCareless(int process) {
  for (int save = 0; save < Saves(); ++save) {
    const std::string path = SharedFile(save);
    WriteFile("theirs", ReadText(path) + LineOf(process, save));
    fs::rename("theirs", path);
    usleep(1000);
  }
}

// Runs processes over the same files, the last of them careless if asked for; how many lines from process `first` on
// are lost.
int LostLines(int first, bool careless) {
  const int saves = Saves();
  fs::create_directory("shared");
  // Half of them are too long to be kept in memory.
  for (int i = 0; i < kFiles; ++i) WriteFile(SharedFile(i), std::string(i % 2 == 0 ? 10 : 70000, '\n'));
  for (int process = 0; process < kProcesses; ++process) {
    if (fork() != 0) continue;
    careless&& process == kProcesses - 1 ? RunCareless(process) : RunProcess(process);
    _exit(0);
  }
  for (int status = 0; wait(&status) > 0;) EXPECT_EQ(status, 0);
  int lost = 0;
  int refused = 0;
  for (int process = 0; process < kProcesses; ++process) {
    refused += std::atoi(ReadText("refused." + std::to_string(process)).c_str());
    for (int save = 0; save < saves && process >= first; ++save) {
      lost += ReadText(SharedFile(save)).find('\n' + LineOf(process, save)) == std::string::npos ? 1 : 0;
    }
  }
  EXPECT_EQ(std::distance(fs::directory_iterator("shared"), fs::directory_iterator()), kFiles);
  fs::remove_all("shared");
  std::printf("%d saves of each process, %d refused and done again, %d lost\n", saves, refused, lost);
  return lost;
}

}  // namespace

TEST(ProcessesTest, NoUpdateOfThisLibraryIsLost) {
  EXPECT_EQ(LostLines(0, false), 0);
  failing.exchange = EINVAL;
  EXPECT_EQ(LostLines(0, false), 0) << "without exchange";
  failing = Failing();
}

// That program may overwrite what this library has saved, but not the other way round.
TEST(ProcessesTest, NoUpdateOfACarelessProgramIsLost) {
  EXPECT_EQ(LostLines(kProcesses - 1, true), 0);
}
