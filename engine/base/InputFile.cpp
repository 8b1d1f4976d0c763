// SPDX-License-Identifier: Apache-2.0
#include "engine/base/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "engine/base/EngineError.h"

namespace engine {

namespace {

// A file up to this size is read by one call and kept: reading and copying it then need no further calls.
constexpr std::uint64_t kKeptSize = 64 * 1024;

std::string AbsolutePath(const std::string& path) {
  char folder[PATH_MAX];
  if (path.empty() || path.front() == '/' || getcwd(folder, sizeof folder) == nullptr) return path;
  return std::string(folder) + '/' + path;
}

[[noreturn]] void ThrowOpenError(const std::string& path, int error) {
  const bool missing = error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
  throw EngineError(missing ? kErrorFileNotFound : kErrorFileUnreadable, path + ": " + std::strerror(error));
}

}  // namespace

InputFile::Identity InputFile::Identity::Of(const struct stat& status) {
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size), status.st_mtim};
}

bool InputFile::Identity::operator==(const Identity& other) const {
  return device == other.device && inode == other.inode && size == other.size &&
         modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

std::shared_ptr<const InputFile> InputFile::Open(const std::string& path) {
  if (path.find('\0') != std::string::npos) ThrowOpenError(path, ENOENT);
  std::shared_ptr<InputFile> file(new InputFile);
  file->path_ = AbsolutePath(path);
  // Without O_NONBLOCK a named pipe would wait for a writer before it could be refused.
  file->descriptor_ = open(file->path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file->descriptor_ < 0) ThrowOpenError(path, errno);
  struct stat status = {};
  if (fstat(file->descriptor_, &status) != 0) ThrowOpenError(path, errno);
  if (S_ISDIR(status.st_mode)) ThrowOpenError(path, EISDIR);
  if (!S_ISREG(status.st_mode)) throw EngineError(kErrorFileUnreadable, path + ": not a regular file");
  file->identity_ = Identity::Of(status);
  file->sparse_ = static_cast<std::uint64_t>(status.st_blocks) * 512 < file->identity_.size;
  return file;
}

std::shared_ptr<const InputFile> InputFile::FromBytes(std::string bytes) {
  std::shared_ptr<InputFile> file(new InputFile);
  file->bytes_ = std::move(bytes);
  file->cached_ = true;
  file->identity_.size = file->bytes_.size();
  return file;
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

// Whether the file is in memory now.
bool InputFile::KeepIfSmall() const {
  if (cached_ || Size() > kKeptSize) return cached_;
  bytes_.resize(static_cast<std::size_t>(Size()));
  ReadFromDisk(0, bytes_.data(), bytes_.size());
  return cached_ = true;
}

std::size_t InputFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) const {
  if (offset >= Size()) return 0;
  count = static_cast<std::size_t>(std::min<std::uint64_t>(count, Size() - offset));
  if (KeepIfSmall()) {
    std::memcpy(buffer, bytes_.data() + offset, count);
  } else {
    ReadFromDisk(offset, static_cast<char*>(buffer), count);
  }
  bytesRead_ += count;
  return count;
}

std::string InputFile::ReadAt(std::uint64_t offset, std::size_t count) const {
  if (offset >= Size()) return {};
  std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, Size() - offset)), '\0');
  ReadAt(offset, bytes.data(), bytes.size());
  return bytes;
}

std::string_view InputFile::ViewAt(std::uint64_t offset, std::size_t count, std::string& storage) const {
  if (offset >= Size()) return {};
  if (!KeepIfSmall()) return storage = ReadAt(offset, count);
  const std::string_view view = std::string_view(bytes_).substr(static_cast<std::size_t>(offset), count);
  bytesRead_ += view.size();
  return view;
}

void InputFile::ReadFromDisk(std::uint64_t offset, char* buffer, std::size_t count) const {
  while (count > 0) {
    const ssize_t got = pread(descriptor_, buffer, count, static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw EngineError(kErrorFileUnreadable, path_ + ": " + std::strerror(errno));
    if (got == 0) {
      tooShort_ = true;
      throw EngineError(kErrorSourceChanged, path_ + ": the file changed while it was read");
    }
    buffer += got;
    offset += static_cast<std::uint64_t>(got);
    count -= static_cast<std::size_t>(got);
  }
}

void InputFile::CheckUnchanged() const {
  if (InMemory()) return;
  struct stat status = {};
  if (tooShort_ || stat(path_.c_str(), &status) != 0 || Identity::Of(status) != identity_) {
    throw EngineError(kErrorSourceChanged, path_ + ": changed since it was opened");
  }
}

}  // namespace engine
