// SPDX-License-Identifier: Apache-2.0
#include "host/files/BackupFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <QRandomGenerator>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/base/Descriptor.h"
#include "host/files/FileLookup.h"

namespace {

[[noreturn]] void Throw(const std::string& name, int error) {
  throw std::runtime_error("cannot make the backup " + name + ": " + std::generic_category().message(error));
}

std::string NumberedName(const std::string& file, const std::string& suffix, int number) {
  return file + (number == 0 ? "" : " (" + std::to_string(number) + ")") + suffix;
}

std::string FolderOf(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? "." : name.substr(0, slash + 1);
}

// An earlier run may have been killed after it made the backup and before it saved.
bool IsSameFile(const std::string& one, const std::string& other) {
  FileLookup lookup;
  const std::optional<FileStatus> first = lookup.Get(one);
  const std::optional<FileStatus> second = lookup.Get(other);
  return first && second && first->identity == second->identity;
}

bool IsTaken(const std::string& name) {
  struct stat status = {};
  return lstat(name.c_str(), &status) == 0;
}

void FlushToDisk(const std::string& name) {
  const Descriptor descriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor || fsync(descriptor.Get()) != 0) Throw(name, errno);
}

// The copy gets its name when it is whole. False when the name is taken.
bool CopyTo(const std::string& file, const std::string& name) {
  const std::string folder = FolderOf(name);
  // The form of the PDF library's temporary files, which `clean` removes.
  char random[17];
  std::snprintf(random, sizeof random, "%016" PRIx64,
                static_cast<std::uint64_t>(QRandomGenerator::system()->generate64()));
  const std::string temporary = folder + (folder.back() == '/' ? "" : "/") + ".vorlane-" + random + ".tmp";
  const Descriptor made(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!made) Throw(name, errno);
  const auto remove = [&] { unlink(temporary.c_str()); };
  struct stat status = {};
  std::error_code error;
  std::filesystem::copy_file(file, temporary, std::filesystem::copy_options::overwrite_existing, error);
  if (error || stat(file.c_str(), &status) != 0) {
    remove();
    Throw(name, error ? error.value() : errno);
  }
  // With another owner, the mode would give other people rights.
  const bool sameOwner = fchown(made.Get(), status.st_uid, status.st_gid) == 0;
  const timespec times[] = {status.st_atim, status.st_mtim};
  const bool complete = fchmod(made.Get(), status.st_mode & (sameOwner ? 07777 : 0700)) == 0 &&
                        futimens(made.Get(), times) == 0 && fsync(made.Get()) == 0;
  int result = complete ? renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) : -1;
  // NFS, for example, knows hard links only.
  if (complete && result != 0 && errno == EINVAL) result = link(temporary.c_str(), name.c_str());
  const int problem = errno;
  remove();
  if (result != 0 && problem != EEXIST) Throw(name, problem);
  return result == 0;
}

}  // namespace

std::string BackupFile::NextName(const std::string& file, const std::string& suffix) {
  for (int number = 0;; ++number) {
    std::string name = NumberedName(file, suffix, number);
    if (!IsTaken(name) || IsSameFile(file, name)) return name;
  }
}

BackupFile::BackupFile(const std::string& file, const std::string& suffix) {
  do {
    name_ = NextName(file, suffix);
  } while (!Make(file));
  if (!made_) return;
  try {
    FlushToDisk(name_);
    FlushToDisk(FolderOf(name_));
  } catch (...) {
    unlink(name_.c_str());
    throw;
  }
}

// False when the name has been taken meanwhile.
bool BackupFile::Make(const std::string& file) {
  if (IsTaken(name_)) return IsSameFile(file, name_);
  const std::optional<FileStatus> status = FileLookup().Get(file);
  const bool onlyName = status && status->links == 1;
  if (onlyName && linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name_.c_str(), AT_SYMLINK_FOLLOW) == 0) return made_ = true;
  if (onlyName && errno == EEXIST) return false;
  return made_ = CopyTo(file, name_);
}

BackupFile::~BackupFile() {
  if (made_) unlink(name_.c_str());
}

BackupFile::BackupFile(BackupFile&& other) noexcept
    : name_(std::move(other.name_)), made_(std::exchange(other.made_, false)) {}
