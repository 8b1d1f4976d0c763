// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace engine {

class InputFile;

// A file that appears under its name whole or not at all: bytes go to a temporary file in the target's folder, and
// Commit() puts that in the target's place. A process killed before Commit() leaves the target as it was; where the
// file system has no unnamed files it also leaves a hidden file ".vorlane-<random>.tmp", which may be deleted.
//
// A target that is a symbolic link stays one: the file behind it is replaced. Of several hard links only the named one
// gets the new content. A replaced file's mode, owner (as far as the process may set it) and extended attributes are
// kept; a write-protected file is not replaced. A replaced file and its folder are flushed to disk, since an old state
// could be lost; a new file is not.
//
// All members throw EngineError: kErrorCannotWrite, or kErrorDiskFull when space or quota runs out.
class OutputFile {
 public:
  // Writes into memory; see TakeBytes().
  OutputFile();
  // Creates the temporary file for the target at `path` (bytes as the file system has them).
  explicit OutputFile(const std::string& path);
  // Without a Commit() the target is untouched and the temporary file removed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(const void* data, std::size_t count);
  void Write(const std::string& bytes) { Write(bytes.data(), bytes.size()); }

  // Appends the whole source: shared blocks where the file system has them, copied inside the kernel where it can,
  // holes kept. Throws kErrorSourceChanged when the source is no longer what was opened.
  void CopyFrom(const InputFile& source);

  // Bytes written so far.
  std::uint64_t Size() const { return written_ + buffer_.size(); }

  // What was written so far, for reading it before it is put in place.
  std::shared_ptr<const InputFile> ReadBack();

  // Puts the file in place. Nothing may be written afterwards. Does nothing in memory.
  void Commit();

  // Whether Commit() put the file in the place of this one.
  bool Replaced(dev_t device, ino_t inode) const { return replaced_ == std::make_pair(device, inode); }

  // What was written into memory; the object is empty afterwards.
  std::string TakeBytes();

 private:
  bool InMemory() const { return target_.empty(); }
  void ResolveTarget();
  bool OpenUnnamed();
  void OpenNamedTemporary();
  void Flush();
  void WriteOut(const char* data, std::size_t count);
  void CopyRange(const InputFile& source, std::uint64_t offset, std::uint64_t count);
  void CopyWithHoles(const InputFile& source);
  void PrepareReplacement(const struct stat& old);
  void Replace();
  void CommitElsewhere();
  bool NameTemporary();
  void Close();
  void SyncFolder() const;
  [[noreturn]] void ThrowWriteError(int error) const;

  std::string target_;     // where the file shall appear
  std::string folder_;     // the target's, with a slash at its end
  std::string temporary_;  // empty while the temporary file has no name
  std::string buffer_;
  std::uint64_t written_ = 0;
  int descriptor_ = -1;
  std::optional<std::pair<dev_t, ino_t>> replaced_;
};

}  // namespace engine
