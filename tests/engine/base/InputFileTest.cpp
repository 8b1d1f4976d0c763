// SPDX-License-Identifier: Apache-2.0
#include "engine/base/InputFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/engine/base/BaseTools.h"
#include "tests/support/Files.h"

namespace fs = std::filesystem;
using engine::InputFile;

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
                     {"secret", geteuid() == 0 ? kErrorNone : kErrorFileUnreadable}};
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

TEST(InputFileTest, EndsWithAnErrorBeforeItsSize) {
  for (const std::size_t size : {1000U, 300000U}) {
    WriteFile("a", std::string(size, 'x'));
    const auto file = InputFile::Open("a");
    fs::resize_file("a", size - 10);
    EXPECT_EQ(CodeOf([&] { file->ReadAt(size - 20, 20); }), kErrorSourceChanged) << size;
  }
  const char* const kPretender = "/sys/kernel/mm/transparent_hugepage/enabled";  // says that it has 4096 bytes
  if (!fs::exists(kPretender)) GTEST_SKIP() << "no /sys";
  const auto file = InputFile::Open(kPretender);
  EXPECT_EQ(CodeOf([&] { file->CheckUnchanged(); }), kErrorNone);
  for (int again = 0; again < 2; ++again) {
    EXPECT_EQ(CodeOf([&] { file->ReadAt(0, 1); }), kErrorSourceChanged);
    EXPECT_EQ(CodeOf([&] { file->CheckUnchanged(); }), kErrorSourceChanged);
  }
}
