// SPDX-License-Identifier: Apache-2.0
#include "engine/base/OutputFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"

namespace engine {

namespace {

constexpr std::size_t kBufferSize = 256 * 1024;
constexpr std::size_t kCopyBlock = 1024 * 1024;
constexpr int kMostLinks = 40;
constexpr mode_t kNewFileMode = 0666;  // less the process's umask

bool IsFull(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

// An unnamed file gets its name through its entry there.
bool UnnamedFilesCanBeNamed() {
  static const bool can = access("/proc/self/fd", X_OK) == 0;
  return can;
}

std::string DescriptorPath(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

// Gives an unnamed file its name; false with errno otherwise, EEXIST when the name is taken.
bool Name(int descriptor, const std::string& name) {
#ifdef AT_EMPTY_PATH
  // Twice as fast as by way of /proc, but not for everyone: the kernel tells those who may not that there is no file.
  static std::atomic<bool> direct{true};
  if (direct && linkat(descriptor, "", AT_FDCWD, name.c_str(), AT_EMPTY_PATH) == 0) return true;
  if (direct && errno != ENOENT && errno != EPERM && errno != EINVAL) return false;
  direct = false;
#endif
  return linkat(AT_FDCWD, DescriptorPath(descriptor).c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

std::string RandomName() {
  unsigned char bytes[8];
  if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
    throw EngineError(kErrorInternal, "no random numbers");
  }
  std::string name = ".vorlane-";
  for (const unsigned char byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", byte);
    name += digits;
  }
  return name + ".tmp";
}

// Labels of security modules describe the old content or are set by the system; those of the user are kept.
bool IsKeptAttribute(const std::string& name) {
  return name.compare(0, 5, "user.") == 0 || name == "system.posix_acl_access";
}

void CopyExtendedAttributes(const std::string& from, int to) {
  std::string names(XATTR_LIST_MAX, '\0');
  const ssize_t length = listxattr(from.c_str(), names.data(), names.size());
  names.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  std::string value;
  for (std::size_t start = 0; start < names.size(); start = names.find('\0', start) + 1) {
    const std::string name = names.c_str() + start;
    if (!IsKeptAttribute(name)) continue;
    value.resize(XATTR_SIZE_MAX);
    const ssize_t size = getxattr(from.c_str(), name.c_str(), value.data(), value.size());
    if (size >= 0 && fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(size), 0) != 0) {
      continue;  // The file system of the folder need not know what the old file had.
    }
  }
}

}  // namespace

OutputFile::OutputFile() = default;

OutputFile::OutputFile(const std::string& path) : target_(path) {
  if (path.empty() || path.back() == '/' || path.find('\0') != std::string::npos) {
    throw EngineError(kErrorCannotWrite, path + ": no file name");
  }
  // Most targets are new. To ask for one first would cost more than to learn of it when its name is given.
  folder_ = FolderOf(target_);
  if (OpenUnnamed()) return;
  ResolveTarget();
  if (!OpenUnnamed()) OpenNamedTemporary();
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::ResolveTarget() {
  char link[PATH_MAX];
  for (int links = 0;; ++links) {
    const ssize_t length = readlink(target_.c_str(), link, sizeof link);
    if (length < 0) break;  // no link, or no such file
    if (links == kMostLinks) ThrowWriteError(ELOOP);
    const std::string destination(link, static_cast<std::size_t>(length));
    target_ = destination.front() == '/' ? destination : FolderOf(target_) + destination;
  }
  folder_ = FolderOf(target_);
}

bool OutputFile::OpenUnnamed() {
  if (UnnamedFilesCanBeNamed()) descriptor_ = open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kNewFileMode);
  return descriptor_ >= 0;
}

void OutputFile::OpenNamedTemporary() {
  // A file that shall take a private one's place must not be readable meanwhile.
  const mode_t mode = access(target_.c_str(), F_OK) == 0 ? 0600 : kNewFileMode;
  do {
    const std::string name = folder_ + RandomName();
    descriptor_ = open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
    if (descriptor_ >= 0) temporary_ = name;
  } while (descriptor_ < 0 && errno == EEXIST);
  if (descriptor_ < 0) ThrowWriteError(errno);
}

void OutputFile::Write(const void* data, std::size_t count) {
  const char* bytes = static_cast<const char*>(data);
  if (InMemory() || buffer_.size() + count <= kBufferSize) {
    buffer_.append(bytes, count);
    return;
  }
  Flush();
  if (count > kBufferSize) {
    WriteOut(bytes, count);
  } else {
    buffer_.append(bytes, count);
  }
}

void OutputFile::Flush() {
  WriteOut(buffer_.data(), buffer_.size());
  buffer_.clear();
}

void OutputFile::WriteOut(const char* data, std::size_t count) {
  while (count > 0) {
    const ssize_t put = write(descriptor_, data, count);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) ThrowWriteError(errno);
    data += put;
    count -= static_cast<std::size_t>(put);
    written_ += static_cast<std::uint64_t>(put);
  }
}

void OutputFile::CopyFrom(const InputFile& source) {
  if (const std::string* bytes = source.Bytes()) {
    Write(*bytes);
  } else if (InMemory() || !source.Sparse()) {
    CopyRange(source, 0, source.Size());
  } else {
    CopyWithHoles(source);
  }
  source.CheckUnchanged();
}

void OutputFile::CopyWithHoles(const InputFile& source) {
  Flush();
  const auto size = static_cast<off_t>(source.Size());
  off_t position = 0;
  while (position < size) {
    off_t data = lseek(source.Descriptor(), position, SEEK_DATA);
    if (data < 0 && errno != ENXIO) data = position;  // a file system without holes
    if (data < 0 || data > size) data = size;
    if (lseek(descriptor_, data - position, SEEK_CUR) < 0) ThrowWriteError(errno);
    written_ += static_cast<std::uint64_t>(data - position);
    off_t hole = data < size ? lseek(source.Descriptor(), data, SEEK_HOLE) : size;
    if (hole <= data || hole > size) hole = size;
    CopyRange(source, static_cast<std::uint64_t>(data), static_cast<std::uint64_t>(hole - data));
    position = hole;
  }
  if (ftruncate(descriptor_, static_cast<off_t>(written_)) != 0) ThrowWriteError(errno);
}

void OutputFile::CopyRange(const InputFile& source, std::uint64_t offset, std::uint64_t count) {
  // copy_file_range shares the blocks itself where the file system can.
  if (!InMemory() && !source.InMemory()) {
    Flush();
    auto from = static_cast<off_t>(offset);
    while (count > 0) {
      const std::size_t part = static_cast<std::size_t>(std::min<std::uint64_t>(count, SSIZE_MAX / 2));
      const ssize_t copied = copy_file_range(source.Descriptor(), &from, descriptor_, nullptr, part, 0);
      if (copied < 0 && errno == EINTR) continue;
      if (copied < 0 && IsFull(errno)) ThrowWriteError(errno);
      if (copied <= 0) break;  // other file systems, or not supported: by hand
      offset += static_cast<std::uint64_t>(copied);
      count -= static_cast<std::uint64_t>(copied);
      written_ += static_cast<std::uint64_t>(copied);
    }
  }
  std::string block;
  while (count > 0) {
    block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(count, kCopyBlock)));
    const std::size_t got = source.ReadAt(offset, block.data(), block.size());
    if (got == 0) throw EngineError(kErrorSourceChanged, source.Path() + ": shrank since it was opened");
    Write(block.data(), got);
    offset += got;
    count -= got;
  }
}

std::shared_ptr<const InputFile> OutputFile::ReadBack() {
  if (InMemory()) return InputFile::FromBytes(buffer_);
  Flush();
  return InputFile::Open(temporary_.empty() ? DescriptorPath(descriptor_) : temporary_);
}

void OutputFile::Commit() {
  if (InMemory()) return;
  Flush();
  const bool unnamed = temporary_.empty();
  if (unnamed && Name(descriptor_, target_)) {
    Close();
    return;
  }
  if (unnamed && errno != EEXIST) ThrowWriteError(errno);
  if (unnamed) ResolveTarget();
  Replace();
}

void OutputFile::Replace() {
  struct stat old = {};
  const bool replaces = lstat(target_.c_str(), &old) == 0;
  if (replaces) PrepareReplacement(old);
  if (temporary_.empty() && !NameTemporary()) return CommitElsewhere();
  Close();
  if (rename(temporary_.c_str(), target_.c_str()) != 0) ThrowWriteError(errno);
  temporary_.clear();
  if (!replaces) return;
  replaced_ = {old.st_dev, old.st_ino};
  SyncFolder();
}

// The target was a link to another file system.
void OutputFile::CommitElsewhere() {
  OutputFile there(target_);
  there.CopyFrom(*ReadBack());
  there.Commit();
  replaced_ = there.replaced_;
  Close();
}

void OutputFile::PrepareReplacement(const struct stat& old) {
  if (!S_ISREG(old.st_mode)) throw EngineError(kErrorCannotWrite, target_ + ": not a regular file");
  if (faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) ThrowWriteError(errno);
  mode_t mode = old.st_mode & 07777;
  if (fchown(descriptor_, old.st_uid, old.st_gid) != 0) {
    mode &= 0777u;  // Another owner's file must not gain this one's rights.
    if (fchown(descriptor_, static_cast<uid_t>(-1), old.st_gid) != 0) mode &= 0707u;
  }
  if (fchmod(descriptor_, mode) != 0) ThrowWriteError(errno);
  CopyExtendedAttributes(target_, descriptor_);
  if (fsync(descriptor_) != 0) ThrowWriteError(errno);
}

bool OutputFile::NameTemporary() {
  std::string name;
  bool named = false;
  do {
    name = folder_ + RandomName();
    named = Name(descriptor_, name);
  } while (!named && errno == EEXIST);
  if (!named && errno == EXDEV) return false;
  if (!named) ThrowWriteError(errno);
  temporary_ = name;
  return true;
}

// Some network file systems tell only now that the data did not fit.
void OutputFile::Close() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (close(descriptor) != 0 && errno != EINTR) ThrowWriteError(errno);
}

// The rename has happened and the file is whole either way, so a folder that cannot be flushed is no failure.
void OutputFile::SyncFolder() const {
  const int folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

std::string OutputFile::TakeBytes() {
  return std::exchange(buffer_, {});
}

void OutputFile::ThrowWriteError(int error) const {
  throw EngineError(IsFull(error) ? kErrorDiskFull : kErrorCannotWrite, target_ + ": " + std::strerror(error));
}

}  // namespace engine
