// SPDX-License-Identifier: Apache-2.0
#include "host/files/FileLookup.h"

#include <fcntl.h>
#include <unistd.h>

#include <string_view>

FileLookup::~FileLookup() {
  Leave();
}

void FileLookup::Leave() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
}

std::optional<FileStatus> FileLookup::Get(const std::string& name, bool followLinks) {
  const std::size_t base = name.rfind('/') + 1;  // npos + 1 is 0
  const std::string_view folder = std::string_view(name).substr(0, base);
  if (folder != folder_) {
    Leave();
    folder_ = folder;
  } else if (descriptor_ < 0 && base > 0) {
    descriptor_ = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  }
  // The first name of a folder, one of a folder that may not be read, or, with a slash at its end, the folder itself.
  const bool whole = descriptor_ < 0 || base == name.size();
  struct stat status;
  if (fstatat(whole ? AT_FDCWD : descriptor_, name.c_str() + (whole ? 0 : base), &status,
              followLinks ? 0 : AT_SYMLINK_NOFOLLOW) != 0) {
    return std::nullopt;
  }
  return FileStatus{{status.st_dev, status.st_ino}, status.st_mode, status.st_nlink};
}
