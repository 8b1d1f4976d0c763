// SPDX-License-Identifier: Apache-2.0
// Processes that save over and over: killed at random moments, and several at once over the same files.
// VORLANE_TEST_KILLS and VORLANE_TEST_SAVES ask for longer runs.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "tests/engine/base/BaseTools.h"
#include "tests/engine/base/FailingSystem.h"
#include "tests/engine/quick/Tools.h"

namespace fs = std::filesystem;
using engine::InputFile;
using engine::OutputFile;

namespace {

constexpr int kProcesses = 3;
constexpr int kFiles = 4;

int Asked(const char* variable, int usual) {
  const char* asked = std::getenv(variable);
  return asked != nullptr ? std::atoi(asked) : usual;
}

void Append(const std::string& from, const std::string& to, const std::string& bytes) {
  const auto source = InputFile::Open(from);
  OutputFile output(to);
  output.CopyFrom(*source);
  output.Write(bytes);
  output.Commit();
}

// Files that have been saved are put back by a rename, so that they too are whole at any moment.
[[noreturn]] void SaveForever() {
  for (unsigned round = 0;; ++round) {
    const std::string name = "in-place/" + std::to_string(round % 5);
    Append(name, name, "new");
    Append("original", "folder/" + std::to_string(getpid()) + '-' + std::to_string(round), "new");
    fs::create_hard_link("original", "again");
    fs::rename("again", name);
  }
}

std::string SharedFile(int save) {
  return "shared/" + std::to_string(save % kFiles);
}

std::string LineOf(int process, int save) {
  return std::to_string(process) + ':' + std::to_string(save) + '\n';
}

// Each save until it is done; counts how often another process was faster.
void RunProcess(int process, int saves) {
  int refused = 0;
  for (int save = 0; save < saves; ++save) {
    const std::string path = SharedFile(save);
    const std::string line = LineOf(process, save);
    while (CodeOf([&] { Append(path, path, line); }) == kErrorSourceChanged) ++refused;
  }
  WriteFile("refused." + std::to_string(process), std::to_string(refused));
}

// A program that neither locks nor checks.
void RunCareless(int process, int saves) {
  for (int save = 0; save < saves; ++save) {
    const std::string path = SharedFile(save);
    WriteFile("theirs", ReadFile(path) + LineOf(process, save));
    fs::rename("theirs", path);
    usleep(1000);
  }
}

// Runs processes over the same files, the last of them careless if asked for; how many lines from process `first` on
// are lost.
int LostLines(int saves, int first, bool careless) {
  fs::create_directory("shared");
  // Half of them are too long to be kept in memory.
  for (int i = 0; i < kFiles; ++i) WriteFile(SharedFile(i), std::string(i % 2 == 0 ? 10 : 70000, '\n'));
  for (int process = 0; process < kProcesses; ++process) {
    if (fork() != 0) continue;
    careless&& process == kProcesses - 1 ? RunCareless(process, saves) : RunProcess(process, saves);
    _exit(0);
  }
  for (int status = 0; wait(&status) > 0;) EXPECT_EQ(status, 0);
  int lost = 0;
  int refused = 0;
  for (int process = 0; process < kProcesses; ++process) {
    refused += std::atoi(ReadFile("refused." + std::to_string(process)).c_str());
    for (int save = 0; save < saves && process >= first; ++save) {
      lost += ReadFile(SharedFile(save)).find('\n' + LineOf(process, save)) == std::string::npos ? 1 : 0;
    }
  }
  EXPECT_EQ(std::distance(fs::directory_iterator("shared"), fs::directory_iterator()), kFiles);
  fs::remove_all("shared");
  std::printf("%d saves of each process, %d refused and done again, %d lost\n", saves, refused, lost);
  return lost;
}

}  // namespace

TEST(ProcessesTest, KilledSavesLeaveWholeFiles) {
  const std::string old(400000, 'x');
  const int kills = Asked("VORLANE_TEST_KILLS", 100);
  WriteFile("original", old);
  std::mt19937 random(7);
  int seenNew = 0;
  useconds_t longest = 8000;
  for (int kill = 0; kill < kills; ++kill) {
    fs::remove_all("folder");
    fs::create_directory("folder");
    fs::create_directory("in-place");
    for (int i = 0; i < 5; ++i) WriteFile("in-place/" + std::to_string(i), old);
    failing.unnamedFiles = kill % 2 == 1;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) SaveForever();
    usleep(std::uniform_int_distribution<useconds_t>(0, longest)(random));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child failed by itself";
    fs::remove("again");
    const int seenBefore = seenNew;
    for (const char* folder : {"in-place", "folder"}) {
      for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename().string().rfind(".vorlane-", 0) == 0) continue;
        const std::string bytes = ReadFile(entry.path());
        ASSERT_TRUE(bytes == old + "new" || (bytes == old && folder == std::string("in-place"))) << entry.path();
        seenNew += bytes == old ? 0 : 1;
      }
    }
    // On a machine that is busy elsewhere the next child gets longer.
    longest = seenNew > seenBefore ? 8000 : std::min<useconds_t>(longest * 2, 128000);
  }
  failing = Failing();
  EXPECT_GT(seenNew, kills / 4) << "the kills came before anything was saved";
}

TEST(ProcessesTest, NoUpdateOfThisLibraryIsLost) {
  const int saves = Asked("VORLANE_TEST_SAVES", 60);
  EXPECT_EQ(LostLines(saves, 0, false), 0);
  failing.exchange = EINVAL;
  EXPECT_EQ(LostLines(saves, 0, false), 0) << "without exchange";
  failing = Failing();
}

// That program may overwrite what this library has saved, but not the other way round.
TEST(ProcessesTest, NoUpdateOfACarelessProgramIsLost) {
  EXPECT_EQ(LostLines(Asked("VORLANE_TEST_SAVES", 60), kProcesses - 1, true), 0);
}
