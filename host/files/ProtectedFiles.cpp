// SPDX-License-Identifier: Apache-2.0
#include "host/files/ProtectedFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

constexpr int kMostLinks = 40;

std::string_view BaseOf(std::string_view name) {
  return name.substr(name.rfind('/') + 1);  // npos + 1 is 0
}

std::string FolderOf(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? "./" : name.substr(0, slash + 1);
}

}  // namespace

ProtectedFiles::Entry ProtectedFiles::Describe(std::string name) {
  // A link may lead to a file that does not exist yet.
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code none;
    const std::string destination = std::filesystem::read_symlink(name, none).string();
    if (none) break;
    name = destination.front() == '/' ? destination : FolderOf(name).append(destination);
  }
  return {{}, IdentityOf(name), IdentityOf(FolderOf(name)), std::string(BaseOf(name))};
}

void ProtectedFiles::Add(const std::string& name, const std::string& what) {
  entries_.push_back(Describe(name));
  entries_.back().what = what;
}

void ProtectedFiles::Add(int descriptor, const std::string& what) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
  entries_.push_back({what, FileStatus(status).identity, std::nullopt, {}});
}

std::string ProtectedFiles::What(const FileIdentity& identity) const {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.identity == identity; });
  return found != entries_.end() ? found->what : std::string();
}

std::string ProtectedFiles::What(const std::string& name) const {
  const Entry asked = Describe(name);
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    const bool samePlace = asked.folder && entry.folder == asked.folder && entry.base == asked.base;
    return samePlace || (asked.identity && entry.identity == asked.identity);
  });
  return found != entries_.end() ? found->what : std::string();
}

bool ProtectedFiles::MayHold(const std::string& name) const {
  const std::string_view base = BaseOf(name);
  return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.base == base; });
}
