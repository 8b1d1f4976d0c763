// SPDX-License-Identifier: Apache-2.0
#include "host/files/LeftoverFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/base/Descriptor.h"
#include "host/files/FolderWalk.h"

namespace {

constexpr std::string_view kPrefix = ".vorlane-";
constexpr std::string_view kSuffix = ".tmp";
constexpr std::size_t kDigits = 16;

enum class Outcome { kRemoved, kKept, kFailed };

bool IsOld(const struct stat& status, std::time_t before) {
  return std::max(status.st_mtime, status.st_ctime) < before;
}

// kFailed with errno. During a save the name may be that of the old document, which the save puts back if need be; the
// lock is held on that one too.
Outcome RemoveFile(const std::string& path, std::time_t before) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat opened = {};
  if (!file || fstat(file.Get(), &opened) != 0)
    return errno == ENOENT || errno == ELOOP ? Outcome::kKept : Outcome::kFailed;
  if (!S_ISREG(opened.st_mode) || !IsOld(opened, before)) return Outcome::kKept;
  if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return Outcome::kKept;
  struct stat named = {};
  const bool same = lstat(path.c_str(), &named) == 0 &&
                    FileIdentity{named.st_dev, named.st_ino} == FileIdentity{opened.st_dev, opened.st_ino};
  if (!same || !IsOld(named, before)) return Outcome::kKept;
  return unlink(path.c_str()) == 0 ? Outcome::kRemoved : Outcome::kFailed;
}

}  // namespace

bool LeftoverFiles::IsName(std::string_view name) {
  if (name.size() != kPrefix.size() + kDigits + kSuffix.size()) return false;
  const std::string_view digits = name.substr(kPrefix.size(), kDigits);
  return name.substr(0, kPrefix.size()) == kPrefix && name.substr(name.size() - kSuffix.size()) == kSuffix &&
         digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::vector<std::string> LeftoverFiles::Find(const std::string& folder) {
  std::vector<std::string> found;
  std::error_code error;
  std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (IsName(name)) found.push_back(folder + name);
  }
  return found;
}

void LeftoverFiles::Remove(const std::string& folder, bool recursive, std::time_t before,
                           const std::function<void(const std::string& path, const std::string& problem)>& each) {
  WalkFolder(folder, {IsName, nullptr, recursive}, [&](const FolderEntry& entry) {
    Outcome outcome = Outcome::kFailed;
    errno = entry.error;
    if (entry.error == 0) outcome = RemoveFile(entry.path, before);
    if (outcome == Outcome::kKept) return;
    each(entry.path, outcome == Outcome::kRemoved ? std::string() : std::generic_category().message(errno));
  });
}
