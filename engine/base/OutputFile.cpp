// SPDX-License-Identifier: Apache-2.0
#include "engine/base/OutputFile.h"

#include <fcntl.h>
#include <sys/file.h>
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
#include <vector>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"

namespace engine {

namespace {

constexpr std::size_t kBufferSize = 256 * 1024;
constexpr std::size_t kCopyBlock = 1024 * 1024;
constexpr std::size_t kEndSize = 4096;
constexpr int kMostLinks = 40;
constexpr mode_t kNewFileMode = 0666;  // less the process's umask
constexpr int kLongestWait = 10000;    // for a lock, in milliseconds
constexpr char kAccessList[] = "system.posix_acl_access";

bool IsFull(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
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
  // Twice as fast as through /proc, but it needs a privilege: without it the kernel reports "no such file".
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

// The user's attributes are kept. Labels of security modules describe the old content or are set by the system.
bool IsKeptAttribute(const std::string& name) {
  return name.compare(0, 5, "user.") == 0 || name == kAccessList;
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
      continue;  // the new file's file system may not have this attribute
    }
  }
}

// Where data starts and ends, from a position before `end` on. A file system without holes has data everywhere.
std::uint64_t NextData(int descriptor, std::uint64_t position, std::uint64_t end) {
  const off_t data = lseek(descriptor, static_cast<off_t>(position), SEEK_DATA);
  if (data < 0) return errno == ENXIO ? end : position;
  return std::min(std::max(static_cast<std::uint64_t>(data), position), end);
}

std::uint64_t NextHole(int descriptor, std::uint64_t position, std::uint64_t end) {
  const off_t hole = lseek(descriptor, static_cast<off_t>(position), SEEK_HOLE);
  return hole > static_cast<off_t>(position) ? std::min(static_cast<std::uint64_t>(hole), end) : end;
}

// False with errno.
bool Exchange(const std::string& one, const std::string& other) {
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

// The kernel, the file system or a filter of system calls has no exchange of names.
bool CannotExchange(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

InputFile::Identity IdentityAt(const std::string& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0 ? InputFile::Identity::Of(status) : InputFile::Identity();
}

[[noreturn]] void ThrowChanged(const std::string& path) {
  throw EngineError(kErrorSourceChanged, path + ": changed since it was opened");
}

// An advisory lock while the object lives. This library holds one for an instant only, so a long wait means another
// program or a stopped process. On file systems without locks nothing is locked.
class FileLock {
 public:
  FileLock(int descriptor, const std::string& path) : descriptor_(descriptor) {
    for (int waited = 0; flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++waited) {
      if (waited == kLongestWait) throw EngineError(kErrorCannotWrite, path + ": locked by another program");
      usleep(1000);
    }
  }
  ~FileLock() { flock(descriptor_, LOCK_UN); }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  const int descriptor_;
};

}  // namespace

OutputFile::OutputFile() = default;

OutputFile::OutputFile(const std::string& path) : target_(path) {
  if (path.empty() || path.back() == '/' || path.find('\0') != std::string::npos) {
    throw EngineError(kErrorCannotWrite, path + ": no file name");
  }
  // Most targets are new, so an existing one is only noticed when the file gets its name; a check here would cost more.
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
  // A file that replaces a private one must not be readable meanwhile.
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

// The descriptor's own position is never used: a hole only moves written_.
void OutputFile::WriteOut(const char* data, std::size_t count) {
  while (count > 0) {
    const ssize_t put = pwrite(descriptor_, data, count, static_cast<off_t>(written_));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) ThrowWriteError(errno);
    data += put;
    count -= static_cast<std::size_t>(put);
    written_ += static_cast<std::uint64_t>(put);
  }
}

void OutputFile::CopyFrom(const InputFile& source) {
  if (Size() > 0) throw EngineError(kErrorInternal, "a copy has to come first");
  source_ = source.shared_from_this();
  if (const std::string* bytes = source.Bytes()) {
    copiedByHand_ = true;
    Write(*bytes);
  } else if (InMemory() || !source.Sparse()) {
    CopyUpTo(source, source.Size());
  } else {
    CopyWithHoles(source);
  }
  if (InMemory()) source.CheckUnchanged();
}

// In this order: if the target is the source and was replaced meanwhile, the check reports it.
void OutputFile::NoteLoaded(const InputFile& loaded) {
  struct stat target = {};
  if (!loaded.InMemory() && stat(target_.c_str(), &target) == 0 && target.st_dev == loaded.GetIdentity().device &&
      target.st_ino == loaded.GetIdentity().inode) {
    loaded_ = loaded.shared_from_this();
  }
  loaded.CheckUnchanged();
}

void OutputFile::CopyWithHoles(const InputFile& source) {
  while (written_ < source.Size()) {
    written_ = NextData(source.Descriptor(), written_, source.Size());
    CopyUpTo(source, NextHole(source.Descriptor(), written_, source.Size()));
    Flush();
  }
  if (ftruncate(descriptor_, static_cast<off_t>(written_)) != 0) ThrowWriteError(errno);
}

// Copies the source's bytes from Size() on.
void OutputFile::CopyUpTo(const InputFile& source, std::uint64_t end) {
  if (!InMemory()) CopyInKernel(source, end);
  std::string block;
  while (Size() < end) {
    copiedByHand_ = true;
    block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(end - Size(), kCopyBlock)));
    source.ReadAt(Size(), block.data(), block.size());
    Write(block);
  }
}

// Stops early where the kernel cannot copy, between file systems for example.
void OutputFile::CopyInKernel(const InputFile& source, std::uint64_t end) {
  while (written_ < end) {
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(end - written_, SSIZE_MAX / 2));
    auto from = static_cast<off_t>(written_);
    auto to = from;
    const ssize_t copied = copy_file_range(source.Descriptor(), &from, descriptor_, &to, count, 0);
    if (copied < 0 && errno == EINTR) continue;
    if (copied < 0 && IsFull(errno)) ThrowWriteError(errno);
    if (copied <= 0) return;
    written_ += static_cast<std::uint64_t>(copied);
  }
}

// Compares everything if it was copied by hand, otherwise the size and both ends.
void OutputFile::CheckBeginsWith(const InputFile& source) const {
  if (IsSmallAndBeginsWith(source)) return;
  const std::uint64_t size = source.Size();
  struct stat status = {};
  bool equal = fstat(descriptor_, &status) == 0 && static_cast<std::uint64_t>(status.st_size) == written_;
  if (copiedByHand_) {
    for (std::uint64_t offset = 0; equal && offset < size; offset += kCopyBlock) {
      if (source.Sparse()) {
        offset = std::min(NextData(source.Descriptor(), offset, size), NextData(descriptor_, offset, size));
      }
      equal = EqualsAt(source, offset, std::min<std::uint64_t>(kCopyBlock, size - offset));
    }
  } else {
    const std::uint64_t end = std::min<std::uint64_t>(kEndSize, size);
    equal = equal && EqualsAt(source, 0, end) && EqualsAt(source, size - end, end);
  }
  if (equal) return;
  source.CheckUnchanged();
  throw EngineError(kErrorCannotWrite, target_ + ": what was written does not begin with the loaded file");
}

// Compares with one system call. False also for a file that is too large for that.
bool OutputFile::IsSmallAndBeginsWith(const InputFile& source) const {
  const std::string* const bytes = source.Bytes();
  if (bytes == nullptr || written_ > kBufferSize) return false;
  std::string block(static_cast<std::size_t>(written_) + 1, '\0');  // so that a longer file shows
  return pread(descriptor_, block.data(), block.size(), 0) == static_cast<ssize_t>(written_) &&
         block.compare(0, bytes->size(), *bytes) == 0;
}

bool OutputFile::EqualsAt(const InputFile& source, std::uint64_t offset, std::uint64_t count) const {
  const std::string wanted = source.ReadAt(offset, static_cast<std::size_t>(count));
  std::string block(wanted.size(), '\0');
  std::size_t done = 0;
  while (done < block.size()) {
    const ssize_t got = pread(descriptor_, &block[done], block.size() - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    done += static_cast<std::size_t>(got);
  }
  return block == wanted;
}

std::shared_ptr<const InputFile> OutputFile::ReadBack() {
  if (InMemory()) return InputFile::FromBytes(buffer_);
  Flush();
  return InputFile::Open(temporary_.empty() ? DescriptorPath(descriptor_) : temporary_);
}

void OutputFile::Commit(const InputFile* loaded) {
  if (InMemory()) return;
  Flush();
  if (source_ != nullptr) CheckBeginsWith(*source_);
  std::vector<const InputFile*> sources;
  if (source_ != nullptr) sources.push_back(source_.get());
  if (loaded != nullptr && loaded != source_.get()) sources.push_back(loaded);
  // Most targets are new. An existing one is noticed when the file gets its name, and examined only then.
  const auto mayBeTarget = [&](const InputFile* source) { return EndsWith(source->Path(), target_); };
  const bool unnamed = temporary_.empty();
  if (unnamed && std::none_of(sources.begin(), sources.end(), mayBeTarget)) {
    for (const InputFile* const source : sources) source->CheckUnchanged();
    if (Name(descriptor_, target_)) return Close();
    if (errno != EEXIST) ThrowWriteError(errno);
  }
  if (unnamed) ResolveTarget();
  for (const InputFile* const source : sources) NoteLoaded(*source);
  Replace();
}

void OutputFile::Replace() {
  struct stat old = {};
  const bool replaces = lstat(target_.c_str(), &old) == 0;
  if (loaded_ != nullptr) CheckIsLoaded(target_, old);
  if (replaces) PrepareReplacement(old);
  if (temporary_.empty() && !NameTemporary()) return CommitElsewhere();
  if (loaded_ != nullptr) {
    TakePlaceOfLoaded(old);
  } else {
    Close();
    if (rename(temporary_.c_str(), target_.c_str()) != 0) ThrowWriteError(errno);
    temporary_.clear();
  }
  if (!replaces) return;
  replaced_ = {old.st_dev, old.st_ino};
  SyncFolder();
}

// Leaves no temporary file. The header describes the locks.
void OutputFile::TakePlaceOfLoaded(const struct stat& old) {
  const FileLock oldLock(loaded_->Descriptor(), target_);
  const FileLock newLock(descriptor_, target_);
  CheckIsLoaded(target_, old);
  if (Exchange(temporary_, target_)) {
    try {
      CheckIsLoaded(temporary_, old);
    } catch (const EngineError&) {
      PutBack();
      throw;
    }
    unlink(temporary_.c_str());
  } else {
    if (errno == ENOENT) ThrowChanged(target_);
    if (!CannotExchange(errno)) ThrowWriteError(errno);
    CheckIsLoaded(target_, old);
    if (rename(temporary_.c_str(), target_.c_str()) != 0) ThrowWriteError(errno);
  }
  temporary_.clear();
}

// The rights are compared too: the new file got them from `old`, and a change since must not be lost.
void OutputFile::CheckIsLoaded(const std::string& path, const struct stat& old) const {
  struct stat now = {};
  if (lstat(path.c_str(), &now) != 0 || InputFile::Identity::Of(now) != loaded_->GetIdentity() ||
      now.st_mode != old.st_mode || now.st_uid != old.st_uid || now.st_gid != old.st_gid) {
    ThrowChanged(target_);
  }
}

// Undoes an exchange that took away another program's save. If the place then holds another file than the one that was
// put there, a program has saved once more meanwhile, and that newest save has to stay.
void OutputFile::PutBack() {
  struct stat own = {};
  fstat(descriptor_, &own);
  InputFile::Identity placed = InputFile::Identity::Of(own);
  for (;;) {
    const InputFile::Identity next = IdentityAt(temporary_);
    if (!Exchange(temporary_, target_)) break;
    if (IdentityAt(temporary_) == placed) return;
    placed = next;
  }
  // If the name was removed meanwhile, the other save gets it back; else it stays under the hidden name.
  if (errno == ENOENT && (link(temporary_.c_str(), target_.c_str()) == 0 || errno == EEXIST)) return;
  const std::string kept = std::exchange(temporary_, {});
  throw EngineError(kErrorCannotWrite, target_ + ": another program saved it meanwhile; its file is now " + kept);
}

// The target was a link to another file system.
void OutputFile::CommitElsewhere() {
  OutputFile there(target_);
  there.CopyFrom(*ReadBack());
  there.Commit(loaded_.get());
  replaced_ = there.replaced_;
  Close();
}

void OutputFile::PrepareReplacement(const struct stat& old) {
  if (!S_ISREG(old.st_mode)) throw EngineError(kErrorCannotWrite, target_ + ": not a regular file");
  if (faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) ThrowWriteError(errno);
  mode_t mode = old.st_mode & 07777;
  if (fchown(descriptor_, old.st_uid, old.st_gid) != 0) {
    mode &= 0777u;  // Another owner's file must not gain this one's rights.
    if (fchown(descriptor_, static_cast<uid_t>(-1), old.st_gid) != 0) CheckGroupIsNoMatter(old);
  }
  if (fchmod(descriptor_, mode) != 0) ThrowWriteError(errno);
  CopyExtendedAttributes(target_, descriptor_);
  if (fsync(descriptor_) != 0) ThrowWriteError(errno);
}

// If group and others have the same rights, another group changes nothing. Otherwise readers would lose the file or
// others could read it, so it is not replaced.
void OutputFile::CheckGroupIsNoMatter(const struct stat& old) const {
  const bool same = (old.st_mode >> 3 & 7U) == (old.st_mode & 7U);
  if (same && getxattr(target_.c_str(), kAccessList, nullptr, 0) < 0) return;
  throw EngineError(kErrorCannotWrite,
                    target_ + ": its group cannot be kept (not a member), and its rights depend on it");
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

// Some network file systems report only now that the data did not fit.
void OutputFile::Close() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (close(descriptor) != 0 && errno != EINTR) ThrowWriteError(errno);
}

// The rename has happened and the file is whole either way, so a folder that cannot be flushed does not matter.
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
