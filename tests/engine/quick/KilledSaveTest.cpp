// SPDX-License-Identifier: Apache-2.0
// A process that saves over and over is killed at random moments: every file it wrote is the old one or the new one.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/BaseUrl.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"
#include "tests/engine/quick/Tools.h"

namespace fs = std::filesystem;
using namespace engine;  // NOLINT(google-build-using-namespace): a test

namespace {

constexpr char kOldUrl[] = "http://example.org/old/";
constexpr char kNewUrl[] = "http://example.org/new/";

// A page and a stream that is long enough to be copied inside the kernel.
std::string MakeFile() {
  std::string text = "%PDF-1.4\n";
  std::string table = "xref\n0 5\n0000000000 65535 f \n";
  const std::string objects[] = {"<</Type/Catalog/Pages 2 0 R/URI<</Base(" + std::string(kOldUrl) + ")>>>>",
                                 "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                 "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R>>",
                                 "<</Length 400000>>stream\n" + std::string(400000, ' ') + "\nendstream"};
  for (int number = 1; number <= 4; ++number) {
    char line[32];
    std::snprintf(line, sizeof line, "%010zu 00000 n \n", text.size());
    table += line;
    text += std::to_string(number) + " 0 obj\n" + objects[number - 1] + "\nendobj\n";
  }
  const std::string start = std::to_string(text.size());
  return text + table + "trailer\n<</Size 5/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
}

void SaveWith(const std::string& from, const std::string& to) {
  const auto input = InputFile::Open(from);
  const auto document = QuickReader::Read(*input);
  OutputFile output(to);
  AppendUpdate(*input, document->tail, {{document->tail.root, engine::WithBaseUrl(document->catalog, kNewUrl)}},
               output);
  output.Commit();
}

// Files that have been saved are put back by a rename, so that they too are whole at any moment.
[[noreturn]] void SaveForever() {
  for (unsigned round = 0;; ++round) {
    const std::string name = std::to_string(round % 5) + ".pdf";
    SaveWith("in-place/" + name, "in-place/" + name);
    SaveWith("original.pdf", "folder/" + std::to_string(getpid()) + '-' + std::to_string(round) + ".pdf");
    fs::create_hard_link("original.pdf", "again.pdf");
    fs::rename("again.pdf", "in-place/" + name);
  }
}

int Kills() {
  const char* asked = std::getenv("VORLANE_TEST_KILLS");
  return asked != nullptr ? std::atoi(asked) : 100;
}

}  // namespace

TEST(KilledSaveTest, EveryFileIsWholeOldOrNew) {
  const std::string old = MakeFile();
  WriteFile("original.pdf", old);
  SaveWith("original.pdf", "expected.pdf");
  const std::string updated = ReadFile("expected.pdf");
  fs::create_directory("in-place");
  fs::create_directory("folder");
  for (int i = 0; i < 5; ++i) WriteFile("in-place/" + std::to_string(i) + ".pdf", old);

  std::mt19937 random(7);
  int seenNew = 0;
  useconds_t longest = 8000;
  for (int kill = 0; kill < Kills(); ++kill) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) SaveForever();
    usleep(std::uniform_int_distribution<useconds_t>(0, longest)(random));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child failed by itself";
    fs::remove("again.pdf");
    const int seenBefore = seenNew;
    for (const char* folder : {"in-place", "folder"}) {
      for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename().string().rfind(".vorlane-", 0) == 0) continue;  // named just before its rename
        const std::string bytes = ReadFile(entry.path());
        ASSERT_TRUE(bytes == updated || (bytes == old && folder == std::string("in-place"))) << entry.path();
        seenNew += bytes == updated ? 1 : 0;
      }
    }
    // On a machine that is busy elsewhere the next child gets longer.
    longest = seenNew > seenBefore ? 8000 : std::min<useconds_t>(longest * 2, 128000);
    fs::remove_all("folder");
    fs::create_directory("folder");
    for (int i = 0; i < 5; ++i) WriteFile("in-place/" + std::to_string(i) + ".pdf", old);
  }
  EXPECT_GT(seenNew, Kills() / 4) << "the kills came before anything was saved";
}
