// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

namespace engine {

// A file, or bytes in memory, opened for reading. It stays readable while the object lives, even when its name is
// removed or given to another file; CheckUnchanged() reports that. For one thread at a time.
class InputFile : public std::enable_shared_from_this<InputFile> {
 public:
  // Differs between two states of a file. A save by rename always shows: the inode is not used again while the file is
  // open here. A change in place shows by size or time, and the time is only as fine as the kernel's clock.
  struct Identity {
    static Identity Of(const struct stat& status);

    dev_t device = 0;
    ino_t inode = 0;
    std::uint64_t size = 0;
    timespec modified = {};

    bool operator==(const Identity& other) const;
    bool operator!=(const Identity& other) const { return !(*this == other); }
  };

  // Opens the regular file at `path` (bytes as the file system has them; a relative path is resolved now).
  // Throws EngineError: kErrorFileNotFound, or kErrorFileUnreadable for a folder, a device or missing rights.
  static std::shared_ptr<const InputFile> Open(const std::string& path);
  static std::shared_ptr<const InputFile> FromBytes(std::string bytes);

  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  std::uint64_t Size() const { return identity_.size; }
  // Device and inode are 0 for bytes in memory.
  const Identity& GetIdentity() const { return identity_; }
  bool InMemory() const { return descriptor_ < 0; }
  // Absolute; empty for bytes in memory.
  const std::string& Path() const { return path_; }
  // For system calls that copy between files; -1 for bytes in memory. Owned by this object.
  int Descriptor() const { return descriptor_; }
  // Whether the file system stores fewer blocks than the size asks for, as with a file that has holes.
  bool Sparse() const { return sparse_; }

  // Copies up to `count` bytes from `offset` on and returns how many there were: fewer only where Size() ends. Throws
  // EngineError: kErrorFileUnreadable, or kErrorSourceChanged when the file ends before Size(), because it shrank or,
  // as in /sys, because its size was never true.
  std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) const;
  std::string ReadAt(std::uint64_t offset, std::size_t count) const;
  // The same bytes without a copy: they are in this object or, if they had to be read, in `storage`.
  std::string_view ViewAt(std::uint64_t offset, std::size_t count, std::string& storage) const;

  // The whole file when it is in memory already (small files are, once read), otherwise null.
  const std::string* Bytes() const { return cached_ ? &bytes_ : nullptr; }

  // Throws EngineError kErrorSourceChanged when the path no longer leads to the very file that was opened, that file
  // has another size or time than when it was opened, or a read has found it too short.
  void CheckUnchanged() const;

  // Bytes that ReadAt has delivered so far.
  std::uint64_t BytesRead() const { return bytesRead_; }

 private:
  InputFile() = default;
  bool KeepIfSmall() const;
  void ReadFromDisk(std::uint64_t offset, char* buffer, std::size_t count) const;

  std::string path_;
  int descriptor_ = -1;
  Identity identity_;
  bool sparse_ = false;
  mutable bool cached_ = false;
  mutable bool tooShort_ = false;  // kept, since a parser may ignore the error
  mutable std::string bytes_;
  mutable std::uint64_t bytesRead_ = 0;
};

}  // namespace engine
