// SPDX-License-Identifier: Apache-2.0
// Compiled twice: the second program has no unnamed temporary files (NoUnnamedFiles.cpp).
#include "engine/base/OutputFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <new>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "tests/engine/quick/Tools.h"

namespace fs = std::filesystem;
using engine::EngineError;
using engine::InputFile;
using engine::OutputFile;

namespace {

int CodeOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const EngineError& error) {
    return error.code();
  }
  return kErrorNone;
}

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

class OutputFileTest : public testing::Test {
 protected:
  void SetUp() override { fs::create_directory("out"); }
};

}  // namespace

TEST_F(OutputFileTest, NewFileAppearsAtCommitOnly) {
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
  EXPECT_EQ(ReadFile("out/a.pdf"), "12" + std::string(1000000, 'x'));
  EXPECT_EQ(Status("out/a.pdf").st_mode & 07777, 0640u);
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(OutputFileTest, WithoutCommitNothingChanges) {
  WriteFile("out/a.pdf", "old");
  for (const char* path : {"out/a.pdf", "out/b.pdf"}) {
    OutputFile output(path);
    output.Write(std::string(1000000, 'x'));
  }
  EXPECT_EQ(ReadFile("out/a.pdf"), "old");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(OutputFileTest, ReplacedFileKeepsModeOwnerAndAttributes) {
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
    EXPECT_EQ(ReadFile("out/a.pdf"), "new");
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

TEST_F(OutputFileTest, SymbolicLinksStay) {
  fs::create_directory("real");
  WriteFile("real/a.pdf", "old");
  fs::create_symlink("../real/a.pdf", "out/relative.pdf");
  fs::create_symlink(fs::absolute("out/relative.pdf"), "out/link-to-link.pdf");
  fs::create_symlink("../real/missing.pdf", "out/dangling.pdf");
  fs::create_symlink("loop.pdf", "out/loop.pdf");
  for (const std::string name : {"relative", "link-to-link"}) {
    Save("out/" + name + ".pdf", name);
    EXPECT_TRUE(fs::is_symlink("out/" + name + ".pdf"));
    EXPECT_EQ(ReadFile("real/a.pdf"), name);
  }
  Save("out/dangling.pdf", "made");
  EXPECT_TRUE(fs::is_symlink("out/dangling.pdf"));
  EXPECT_EQ(ReadFile("real/missing.pdf"), "made");
  EXPECT_EQ(SaveCode("out/loop.pdf"), kErrorCannotWrite);
  EXPECT_EQ(FilesIn("real"), 2u);
}

TEST_F(OutputFileTest, LinksLeadToOtherFileSystems) {
  char folder[] = "/dev/shm/vorlane-test-XXXXXX";
  if (mkdtemp(folder) == nullptr || Status(folder).st_dev == Status("out").st_dev) GTEST_SKIP() << "there is no other";
  const std::string far = std::string(folder) + "/a.pdf";
  WriteFile(far, "old");
  ASSERT_EQ(chmod(far.c_str(), 0640), 0);
  fs::create_symlink(far, "out/a.pdf");
  Save("out/a.pdf", "new");
  EXPECT_TRUE(fs::is_symlink("out/a.pdf"));
  EXPECT_EQ(ReadFile(far), "new");
  EXPECT_EQ(Status(far).st_mode & 07777u, 0640u);
  EXPECT_EQ(FilesIn("out") + FilesIn(folder), 2u);
  fs::remove_all(folder);
}

TEST_F(OutputFileTest, OtherHardLinksKeepTheOldContent) {
  WriteFile("out/a.pdf", "old");
  fs::create_hard_link("out/a.pdf", "out/b.pdf");
  Save("out/a.pdf", "new");
  EXPECT_EQ(ReadFile("out/a.pdf"), "new");
  EXPECT_EQ(ReadFile("out/b.pdf"), "old");
}

TEST_F(OutputFileTest, RefusesWhatCannotBeWritten) {
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
  EXPECT_EQ(ReadFile("out/file"), "old");
  ASSERT_EQ(chmod("out", 0555), 0);
  EXPECT_EQ(SaveCode("out/new"), kErrorCannotWrite);
  ASSERT_EQ(chmod("out", 0755), 0);
}

TEST_F(OutputFileTest, FullDiskLeavesTheOldFile) {
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
  EXPECT_EQ(ReadFile("out/a.pdf"), "old");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(OutputFileTest, CopiesWholeSources) {
  for (const std::size_t size : {0U, 1U, 65536U, 65537U, 300000U, 3000000U}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    WriteFile("source", bytes);
    for (const auto& source : {InputFile::Open("source"), InputFile::FromBytes(bytes)}) {
      source->ReadAt(0, 1);
      OutputFile file("out/copy");
      file.CopyFrom(*source);
      file.Write("end");
      EXPECT_EQ(file.Size(), size + 3);
      file.Commit();
      EXPECT_EQ(ReadFile("out/copy"), bytes + "end");
      OutputFile memory;
      memory.CopyFrom(*source);
      memory.Write("end");
      EXPECT_EQ(memory.TakeBytes(), bytes + "end");
    }
  }
}

TEST_F(OutputFileTest, CopiesOntoItselfAndAcrossFileSystems) {
  WriteFile("out/a", std::string(200000, 'a'));
  {
    const auto source = InputFile::Open("out/a");
    OutputFile output("out/a");
    output.CopyFrom(*source);
    output.Write("b");
    output.Commit();
    EXPECT_EQ(CodeOf([&] { source->CheckUnchanged(); }), kErrorSourceChanged);
  }
  EXPECT_EQ(ReadFile("out/a"), std::string(200000, 'a') + 'b');
  char other[] = "/dev/shm/vorlane-test-XXXXXX";
  if (mkdtemp(other) == nullptr) GTEST_SKIP() << "no second file system";
  {
    OutputFile output(std::string(other) + "/copy");
    output.CopyFrom(*InputFile::Open("out/a"));
    output.Commit();
  }
  EXPECT_EQ(ReadFile(std::string(other) + "/copy"), ReadFile("out/a"));
  fs::remove_all(other);
}

TEST_F(OutputFileTest, KeepsHoles) {
  constexpr std::uint64_t kSize = 10'000'000'000;
  WriteFile("sparse", "head");
  fs::resize_file("sparse", kSize);
  const int descriptor = open("sparse", O_WRONLY);
  ASSERT_EQ(pwrite(descriptor, "middle", 6, 5'000'000'000), 6);
  close(descriptor);
  const auto source = InputFile::Open("sparse");
  if (!source->Sparse()) GTEST_SKIP() << "a file system without holes";
  {
    OutputFile output("out/copy");
    output.CopyFrom(*source);
    EXPECT_EQ(output.Size(), kSize);
    output.Commit();
  }
  const auto copy = InputFile::Open("out/copy");
  EXPECT_EQ(copy->Size(), kSize);
  EXPECT_TRUE(copy->Sparse());
  EXPECT_EQ(copy->ReadAt(0, 5), std::string("head\0", 5));
  EXPECT_EQ(copy->ReadAt(5'000'000'000, 6), "middle");
  EXPECT_LT(Status("out/copy").st_blocks, 10000);
}

TEST_F(OutputFileTest, NoticesThatTheSourceChanged) {
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
      EXPECT_EQ(CodeOf([&] { OutputFile("out/a").CopyFrom(*source); }), kErrorSourceChanged) << name;
      EXPECT_EQ(FilesIn("out"), 0u);
    }
  }
}

TEST(InputFileTest, RefusesWhatIsNoReadableFile) {
  fs::create_directory("folder");
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  WriteFile("secret", "x");
  chmod("secret", 0);
  struct {
    std::string path;
    int code;
  } const cases[] = {{"", kErrorFileNotFound},
                     {"missing", kErrorFileNotFound},
                     {"missing/a", kErrorFileNotFound},
                     {"secret/a", kErrorFileNotFound},
                     {std::string("secret\0", 7), kErrorFileNotFound},
                     {std::string(5000, 'n'), kErrorFileNotFound},
                     {"folder", kErrorFileUnreadable},
                     {"pipe", kErrorFileUnreadable},
                     {"/dev/zero", kErrorFileUnreadable},
                     {"secret", IsRoot() ? kErrorNone : kErrorFileUnreadable}};
  for (const auto& c : cases) EXPECT_EQ(CodeOf([&] { InputFile::Open(c.path); }), c.code) << c.path;
}

TEST(InputFileTest, StaysTheSameFileWhenTheWorkingFolderChanges) {
  WriteFile("a", "bytes");
  fs::create_directory("sub");
  const auto file = InputFile::Open("a");
  fs::current_path("sub");
  EXPECT_EQ(CodeOf([&] { file->CheckUnchanged(); }), kErrorNone);
  EXPECT_EQ(file->ReadAt(1, 100), "ytes");
  EXPECT_EQ(file->ReadAt(5, 1), "");
  EXPECT_EQ(file->ReadAt(UINT64_MAX, 1), "");
}
