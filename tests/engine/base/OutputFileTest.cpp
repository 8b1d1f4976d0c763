// SPDX-License-Identifier: Apache-2.0
// Every test runs twice: with unnamed temporary files, and as on file systems that have none.
#include "engine/base/OutputFile.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "engine/base/InputFile.h"
#include "tests/engine/base/BaseTools.h"
#include "tests/engine/base/FailingSystem.h"
#include "tests/support/Files.h"

namespace fs = std::filesystem;
using engine::InputFile;
using engine::OutputFile;

namespace {

void Save(const std::string& path, const std::string& bytes) {
  OutputFile output(path);
  output.Write(bytes);
  output.Commit();
}

int SaveCode(const std::string& path) {
  return CodeOf([&] { Save(path, "new"); });
}

struct stat Status(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status;
}

std::size_t FilesIn(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

bool IsRoot() {
  return geteuid() == 0;
}

// A folder on another file system; empty where there is none.
class OtherFileSystem {
 public:
  OtherFileSystem() {
    char made[] = "/dev/shm/vorlane-test-XXXXXX";
    if (mkdtemp(made) == nullptr) return;
    if (Status(made).st_dev == Status(".").st_dev) {
      fs::remove(made);
    } else {
      folder = made;
    }
  }
  ~OtherFileSystem() {
    if (!folder.empty()) fs::remove_all(folder);
  }

  std::string folder;
};

// Pieces of random lengths, every other one a hole.
void MakeSparseFile(const std::string& path, std::uint64_t size, std::mt19937& random) {
  const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
  ASSERT_EQ(ftruncate(file, static_cast<off_t>(size)), 0);
  bool hole = random() % 2 == 0;
  for (std::uint64_t start = 0; start < size; hole = !hole) {
    const std::uint64_t longest = random() % 3 == 0 ? 9000 : 400000;
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(size - start, 1 + random() % longest)), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    if (!hole) {
      ASSERT_EQ(pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(start)),
                static_cast<ssize_t>(bytes.size()));
    }
    start += bytes.size();
  }
  close(file);
}

class OutputFileTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    SetFailing({});
    fs::create_directory("out");
  }
  void TearDown() override { failing = Failing(); }

  static void SetFailing(const std::function<void()>& fail) {
    failing = Failing();
    failing.unnamedFiles = !GetParam();
    if (fail) fail();
  }
};

INSTANTIATE_TEST_SUITE_P(Temporary, OutputFileTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "Unnamed" : "Named"; });

}  // namespace

TEST_P(OutputFileTest, NewFileAppearsAtCommitOnly) {
  const mode_t before = umask(027);
  {
    OutputFile output("out/a.pdf");
    output.Write("12");
    output.Write(std::string(1000000, 'x'));
    EXPECT_EQ(output.Size(), 1000002u);
    EXPECT_FALSE(fs::exists("out/a.pdf"));
    output.Commit();
  }
  umask(before);
  EXPECT_EQ(ReadText("out/a.pdf"), "12" + std::string(1000000, 'x'));
  EXPECT_EQ(Status("out/a.pdf").st_mode & 07777, 0640u);
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_P(OutputFileTest, WithoutCommitNothingChanges) {
  WriteFile("out/a.pdf", "old");
  for (const char* path : {"out/a.pdf", "out/b.pdf"}) OutputFile(path).Write(std::string(1000000, 'x'));
  EXPECT_EQ(ReadText("out/a.pdf"), "old");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_P(OutputFileTest, ReplacedFileKeepsModeOwnerAndAttributes) {
  for (const mode_t mode : {0600u, 0664u, 0755u}) {
    WriteFile("out/a.pdf", "old");
    ASSERT_EQ(chmod("out/a.pdf", mode), 0);
    if (IsRoot()) {
      ASSERT_EQ(chown("out/a.pdf", 12345, 54321), 0);
    }
    const bool attributes = setxattr("out/a.pdf", "user.note", "kept", 4, 0) == 0;
    const auto old = Status("out/a.pdf");
    Save("out/a.pdf", "new");
    const auto now = Status("out/a.pdf");
    EXPECT_EQ(ReadText("out/a.pdf"), "new");
    EXPECT_EQ(now.st_mode, old.st_mode);
    EXPECT_EQ(now.st_uid, old.st_uid);
    EXPECT_EQ(now.st_gid, old.st_gid);
    char value[8] = {};
    if (attributes) {
      EXPECT_EQ(getxattr("out/a.pdf", "user.note", value, sizeof value), 4);
    }
    EXPECT_EQ(FilesIn("out"), 1u);
    fs::remove("out/a.pdf");
  }
}

TEST_P(OutputFileTest, SymbolicLinksStayAndHardLinksKeepTheOldContent) {
  fs::create_directory("real");
  WriteFile("real/a.pdf", "old");
  fs::create_symlink("../real/a.pdf", "out/relative.pdf");
  fs::create_symlink(fs::absolute("out/relative.pdf"), "out/link-to-link.pdf");
  fs::create_symlink("../real/missing.pdf", "out/dangling.pdf");
  fs::create_symlink("loop.pdf", "out/loop.pdf");
  fs::create_hard_link("real/a.pdf", "hard.pdf");
  for (const std::string name : {"relative", "link-to-link"}) {
    Save("out/" + name + ".pdf", name);
    EXPECT_TRUE(fs::is_symlink("out/" + name + ".pdf"));
    EXPECT_EQ(ReadText("real/a.pdf"), name);
  }
  EXPECT_EQ(ReadText("hard.pdf"), "old");
  Save("out/dangling.pdf", "made");
  EXPECT_TRUE(fs::is_symlink("out/dangling.pdf"));
  EXPECT_EQ(ReadText("real/missing.pdf"), "made");
  EXPECT_EQ(SaveCode("out/loop.pdf"), kErrorCannotWrite);
  EXPECT_EQ(FilesIn("real"), 2u);
}

TEST_P(OutputFileTest, RefusesWhatCannotBeWritten) {
  fs::create_directory("out/folder");
  ASSERT_EQ(mkfifo("out/pipe", 0600), 0);
  WriteFile("out/file", "old");
  for (const std::string& path :
       {std::string(), std::string("out/folder"), std::string("out/folder/"), std::string("out/pipe"),
        std::string("out/missing/a.pdf"), std::string("out/file/a.pdf"), std::string("out/a\0b", 7),
        "out/" + std::string(300, 'n')}) {
    EXPECT_EQ(SaveCode(path), kErrorCannotWrite) << path;
  }
  EXPECT_EQ(FilesIn("out"), 3u);
  EXPECT_EQ(SaveCode("/proc/a.pdf"), kErrorCannotWrite);
  if (IsRoot()) return;  // may write anywhere
  ASSERT_EQ(chmod("out/file", 0444), 0);
  EXPECT_EQ(SaveCode("out/file"), kErrorCannotWrite);
  EXPECT_EQ(ReadText("out/file"), "old");
  ASSERT_EQ(chmod("out", 0555), 0);
  EXPECT_EQ(SaveCode("out/new"), kErrorCannotWrite);
  ASSERT_EQ(chmod("out", 0755), 0);
}

TEST_P(OutputFileTest, FullDiskLeavesTheOldFile) {
  WriteFile("out/a.pdf", "old");
  WriteFile("source", std::string(300000, 's'));
  const auto source = InputFile::Open("source");
  rlimit before = {};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit small = before;
  small.rlim_cur = 100000;
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_EQ(CodeOf([&] { Save("out/a.pdf", std::string(2000000, 'x')); }), kErrorDiskFull);
  EXPECT_EQ(CodeOf([&] { OutputFile("out/a.pdf").CopyFrom(*source); }), kErrorDiskFull);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(ReadText("out/a.pdf"), "old");
  EXPECT_EQ(FilesIn("out"), 1u);
}

// Each of these goes wrong without an error.
TEST_P(OutputFileTest, CopiesHolesAndDataOnEveryFallback) {
  const OtherFileSystem other;
  std::vector<std::string> targets = {"out/copy"};
  if (!other.folder.empty()) {
    targets.insert(targets.end(), {other.folder + "/copy", "out/link"});
    fs::create_symlink(other.folder + "/linked", "out/link");
  }
  const std::pair<const char*, std::function<void()>> fallbacks[] = {
      {"none", {}},
      {"not implemented", [] { failing.copy = ENOSYS; }},
      {"another file system", [] { failing.copy = EXDEV; }},
      {"stops half-way", [] { failing.copy = EINVAL, failing.copiesBefore = 1; }},
      {"no holes", [] { failing.holes = true; }},
      {"neither", [] { failing.holes = true, failing.copy = EINVAL; }},
  };
  std::mt19937 random(1);
  for (const std::uint64_t size : {0U, 1U, 65536U, 65537U, 262145U, 1048577U}) {
    for (int layout = 0; layout < 3; ++layout) {
      MakeSparseFile("source", size, random);
      const std::string bytes = ReadText("source");
      for (const auto& [name, fail] : fallbacks) {
        for (const std::string& target : targets) {
          SetFailing(fail);
          WriteFile(target, "old");
          chmod(target.c_str(), 0640);
          const auto source = InputFile::Open("source");
          if (layout == 0) source->ReadAt(0, 1);  // small ones are then copied from memory
          OutputFile output(target);
          output.CopyFrom(*source);
          EXPECT_EQ(output.Size(), size);
          output.Write("end");
          output.Commit();
          ASSERT_TRUE(ReadText(target) == bytes + "end") << size << ' ' << name << ' ' << target;
          OutputFile memory;
          memory.CopyFrom(*source);
          ASSERT_TRUE(memory.TakeBytes() == bytes) << size << ' ' << name;
        }
      }
    }
  }
  EXPECT_EQ(FilesIn("out"), targets.size() > 1 ? 2u : 1u);
  if (other.folder.empty()) GTEST_SKIP() << "no second file system";
  EXPECT_TRUE(fs::is_symlink("out/link"));
  EXPECT_EQ(Status(other.folder + "/linked").st_mode & 07777u, 0640u);
  EXPECT_EQ(FilesIn(other.folder), 2u);
}

// Each of these goes wrong without an error from the system.
TEST_P(OutputFileTest, RefusesACopyThatDoesNotBeginWithTheSource) {
  const struct {
    std::size_t size;
    std::function<void()> fail;
  } cases[] = {
      {300000, [] { failing.copiesLie = true; }},
      {300000, [] { failing.copy = EXDEV, failing.writesLie = true; }},
      {1000, [] { failing.writesLie = true; }},
  };
  for (const auto& c : cases) {
    const std::string old(c.size, 'a');
    SetFailing({});
    WriteFile("out/a", old);
    SetFailing(c.fail);
    const auto source = InputFile::Open("out/a");
    source->ReadAt(0, 1);
    OutputFile output("out/a");
    output.CopyFrom(*source);
    EXPECT_EQ(CodeOf([&] { output.Commit(); }), kErrorCannotWrite) << c.size;
    EXPECT_EQ(ReadText("out/a"), old);
  }
}

TEST_P(OutputFileTest, AnotherProgramsSaveStays) {
  const auto save = [](const char* bytes) {
    return [bytes] { WriteFile("theirs", bytes), fs::rename("theirs", "out/a"); };
  };
  const auto remove = [] { fs::remove("out/a"); };
  const struct {
    const char* name;
    int exchange;
    std::vector<std::function<void()>> meanwhile;  // before each exchange
    const char* stays;
  } cases[] = {
      {"saved", 0, {save("1")}, "1"},
      {"saved, no exchange", EINVAL, {save("1")}, "1"},
      {"written in place", 0, {[] { WriteFile("out/a", "1"); }}, "1"},
      {"saved again while it is put back", 0, {save("1"), save("2")}, "2"},
      {"and again", 0, {save("1"), save("2"), save("3")}, "3"},
      {"removed", 0, {remove}, ""},
      {"removed, no exchange", ENOSYS, {remove}, ""},
      {"removed while it is put back", 0, {save("1"), remove}, "1"},
      {"rights taken away", 0, {[] { fs::permissions("out/a", fs::perms::owner_read); }}, "old"},
  };
  for (const auto& c : cases) {
    for (const bool copied : {true, false}) {
      WriteFile("out/a", "old");
      const auto source = InputFile::Open("out/a");
      OutputFile output(copied ? "out/a" : "out/../out/a");
      if (copied) output.CopyFrom(*source);
      output.Write("new");
      failing.exchange = c.exchange;
      failing.beforeExchange = c.meanwhile;
      EXPECT_EQ(CodeOf([&] { output.Commit(copied ? nullptr : source.get()); }), kErrorSourceChanged) << c.name;
      EXPECT_EQ(fs::exists("out/a") ? ReadText("out/a") : "", c.stays) << c.name;
      fs::remove("out/a");
    }
  }
  EXPECT_EQ(FilesIn("out"), 0u);
}

// A second save of this library, at a moment when the first one holds the locks.
TEST_P(OutputFileTest, SavesWaitForOneAnother) {
  const struct {
    const char* name;
    int exchange;
    bool savedBefore;  // by another program, so that the first save is taken back
    int code;
    const char* stays;
  } cases[] = {
      {"exchange", 0, false, kErrorNone, "old+"},
      {"no exchange", EINVAL, false, kErrorNone, "old+"},
      {"taken back", 0, true, kErrorSourceChanged, "theirs"},
  };
  for (const auto& c : cases) {
    WriteFile("out/a", "old");
    int second = kErrorNone;
    const auto save = [](const char* more) {
      const auto source = InputFile::Open("out/a");
      OutputFile output("out/a");
      output.CopyFrom(*source);
      output.Write(more);
      output.Commit();
    };
    failing.waiting = true;
    failing.exchange = c.exchange;
    if (c.savedBefore) {
      failing.beforeExchange.emplace_back([] { WriteFile("theirs", "theirs"), fs::rename("theirs", "out/a"); });
    }
    failing.beforeExchange.emplace_back([&] { second = CodeOf([&] { save("-"); }); });
    EXPECT_EQ(CodeOf([&] { save("+"); }), c.code) << c.name;
    EXPECT_EQ(second, kErrorCannotWrite) << c.name;
    EXPECT_EQ(ReadText("out/a"), c.stays) << c.name;
    EXPECT_EQ(FilesIn("out"), 1u);
  }
}

// The owner of a file need not be a member of its group.
TEST_P(OutputFileTest, KeepsTheGroupOrLeavesTheFile) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to others";
  constexpr uid_t kOwner = 12345;
  constexpr gid_t kGroup = 54321;
  const struct {
    mode_t mode, folderMode;
    int code;
  } cases[] = {
      {0640, 0755, kErrorCannotWrite}, {0664, 0755, kErrorCannotWrite}, {0604, 0755, kErrorCannotWrite},
      {0644, 0755, kErrorNone},        {0600, 0755, kErrorNone},        {0640, 02755, kErrorNone},
  };
  ASSERT_EQ(chmod(".", 0755), 0);
  ASSERT_EQ(chown("out", kOwner, kGroup), 0);
  for (const auto& c : cases) {
    ASSERT_EQ(chmod("out", c.folderMode), 0);
    WriteFile("out/a", "old");
    ASSERT_EQ(chown("out/a", kOwner, kGroup), 0);
    ASSERT_EQ(chmod("out/a", c.mode), 0);
    const pid_t child = fork();
    if (child == 0) {
      fs::current_path("out");
      const bool other = setgroups(0, nullptr) == 0 && setgid(kOwner) == 0 && setuid(kOwner) == 0;
      _exit(other ? SaveCode("a") : 255);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), c.code) << std::oct << c.mode;
    EXPECT_EQ(ReadText("out/a"), c.code == kErrorNone ? "new" : "old");
    EXPECT_EQ(Status("out/a").st_mode & 07777u, c.mode);
    EXPECT_EQ(Status("out/a").st_gid, c.code == kErrorNone && c.folderMode == 0755 ? kOwner : kGroup) << c.mode;
    EXPECT_EQ(FilesIn("out"), 1u);
    fs::remove("out/a");
  }
}

TEST_P(OutputFileTest, KeepsHoles) {
  constexpr std::uint64_t kSize = 10'000'000'000;
  for (const int copyError : {0, EXDEV}) {
    WriteFile("sparse", "head");
    fs::resize_file("sparse", kSize);
    const auto source = InputFile::Open("sparse");
    if (!source->Sparse()) GTEST_SKIP() << "a file system without holes";
    failing.copy = copyError;
    OutputFile output("out/copy");
    output.CopyFrom(*source);
    output.Write("end");
    output.Commit();
    const auto copy = InputFile::Open("out/copy");
    EXPECT_EQ(copy->Size(), kSize + 3);
    EXPECT_EQ(copy->ReadAt(0, 5), std::string("head\0", 5));
    EXPECT_EQ(copy->ReadAt(kSize - 1, 9), std::string("\0end", 4));
    EXPECT_LT(Status("out/copy").st_blocks, 10000);
  }
}

// A process that ends when nothing but the new name is missing.
TEST_P(OutputFileTest, AnEndedProcessLeavesTheOldFile) {
  WriteFile("out/a", "old");
  if (fork() == 0) {
    const auto source = InputFile::Open("out/a");
    OutputFile output("out/a");
    output.CopyFrom(*source);
    failing.beforeExchange = {[] { _exit(0); }};
    output.Commit();
  }
  int status = 1;
  wait(&status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadText("out/a"), "old");
  EXPECT_LE(FilesIn("out"), 2u);
}

TEST_P(OutputFileTest, NoticesThatTheSourceChanged) {
  const std::string old(100000, 'o');
  const std::pair<const char*, std::function<void()>> changes[] = {
      {"shrunk", [] { fs::resize_file("source", 5); }},
      {"emptied", [] { fs::resize_file("source", 0); }},
      {"grown", [] { fs::resize_file("source", 200000); }},
      {"removed", [] { fs::remove("source"); }},
      {"replaced", [&] { WriteFile("other", old), fs::rename("other", "source"); }},
      {"written to", [] { fs::last_write_time("source", fs::last_write_time("source") + std::chrono::seconds(2)); }},
  };
  for (const auto& [name, change] : changes) {
    for (const std::size_t size : {std::size_t{100}, old.size()}) {
      WriteFile("source", old.substr(0, size));
      const auto source = InputFile::Open("source");
      source->ReadAt(0, 1);
      change();
      const auto save = [&] {
        OutputFile output("out/a");
        output.CopyFrom(*source);
        output.Commit();
      };
      EXPECT_EQ(CodeOf(save), kErrorSourceChanged) << name;
      EXPECT_EQ(CodeOf([&] { OutputFile().CopyFrom(*source); }), kErrorSourceChanged) << name;
      EXPECT_EQ(FilesIn("out"), 0u);
    }
  }
}
