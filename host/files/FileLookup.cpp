// SPDX-License-Identifier: Apache-2.0
#include "host/files/FileLookup.h"

#include <fcntl.h>

#include <string_view>

std::optional<FileStatus> FileLookup::Get(const std::string& name) {
  const std::size_t base = name.rfind('/') + 1;  // npos + 1 is 0
  const std::string_view folder = std::string_view(name).substr(0, base);
  if (folder != folder_) {
    descriptor_.Close();
    folder_ = folder;
  } else if (!descriptor_ && base > 0) {
    descriptor_ = Descriptor(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  }
  // The first name of a folder, one of a folder that may not be read, or, with a slash at its end, the folder itself.
  const bool whole = !descriptor_ || base == name.size();
  struct stat status = {};
  if (fstatat(whole ? AT_FDCWD : descriptor_.Get(), name.c_str() + (whole ? 0 : base), &status, 0) != 0)
    return std::nullopt;
  return FileStatus(status);
}

std::optional<FileIdentity> IdentityOf(const std::string& name) {
  const std::optional<FileStatus> status = FileLookup().Get(name);
  return status ? std::optional(status->identity) : std::nullopt;
}
