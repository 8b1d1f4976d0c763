// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/CanonicalNames.h"

#include <sys/stat.h>

#include <cstdlib>

namespace {

std::string RealPath(const std::string& path) {
  char* const found = realpath(path.c_str(), nullptr);
  std::string real = found != nullptr ? found : path;
  std::free(found);
  return real;
}

}  // namespace

std::string CanonicalNames::Of(const std::string& path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) return path;
  return S_ISLNK(status.st_mode) ? RealPath(path) : OfFile(path);
}

std::string CanonicalNames::OfFile(const std::string& path) {
  const std::size_t base = path.rfind('/') + 1;
  if (path.compare(0, base, folder_) != 0 || folder_.size() != base) {
    folder_ = path.substr(0, base);
    real_ = RealPath(folder_);
    if (real_.back() != '/') real_ += '/';
  }
  return real_ + path.substr(base);
}
