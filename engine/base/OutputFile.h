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
// Commit() puts that in the target's place. A process that is killed leaves the target whole, old or new. It may also
// leave a hidden file ".vorlane-<random>.tmp", which may be deleted.
//
// A target that is a symbolic link stays one: the file that it leads to is replaced. Of several hard links only the
// named one gets the new content. A replaced file keeps its mode, its extended attributes and, as far as the process
// may set it, its owner. It keeps its group too, or is not replaced where another group would change anybody's rights.
// A write-protected file is not replaced. A replaced file and its folder are flushed to disk, since an old state could
// be lost; a new file is not.
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

  // Writes the whole source, before anything else: shared blocks where the file system has them, copied inside the
  // kernel where it can, holes kept. Throws kErrorSourceChanged when the source ends too early. Commit() checks that
  // the source is still what was opened and that the file begins with it; in memory the first is checked here.
  void CopyFrom(const InputFile& source);

  // Bytes written so far.
  std::uint64_t Size() const { return written_ + buffer_.size(); }

  // What was written so far, for reading it before it is put in place.
  std::shared_ptr<const InputFile> ReadBack();

  // Puts the file in place. Nothing may be written afterwards. Does nothing in memory.
  //
  // A target that is the source of CopyFrom(), or `loaded` where nothing was copied, must still be that file in that
  // state. Otherwise this throws kErrorSourceChanged and leaves the target as another program saved it. Between saves
  // of this library no update is lost. A save holds an advisory lock (flock) on the old file and on the new one while
  // it checks the name, exchanges the two and looks at what came out. A second save of the same old file waits for the
  // lock and then finds another file under the name. Whoever reads the new file before the look can save only after
  // it, and fails if the new file was taken back. Programs that take no lock are noticed by the look. Where the file
  // system cannot exchange names (NFS, for example), the instant between the check and the rename is left to them;
  // where it has no flock for files open for reading, to this library too.
  void Commit(const InputFile* loaded = nullptr);

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
  void CopyUpTo(const InputFile& source, std::uint64_t end);
  void CopyInKernel(const InputFile& source, std::uint64_t end);
  void CopyWithHoles(const InputFile& source);
  void NoteLoaded(const InputFile& loaded);
  void CheckBeginsWith(const InputFile& source) const;
  bool IsSmallAndBeginsWith(const InputFile& source) const;
  bool EqualsAt(const InputFile& source, std::uint64_t offset, std::uint64_t count) const;
  void PrepareReplacement(const struct stat& old);
  void CheckGroupIsNoMatter(const struct stat& old) const;
  void Replace();
  void TakePlaceOfLoaded(const struct stat& old);
  void CheckIsLoaded(const std::string& path, const struct stat& old) const;
  void PutBack();
  void CommitElsewhere();
  bool NameTemporary();
  void Close();
  void SyncFolder() const;
  [[noreturn]] void ThrowWriteError(int error) const;

  std::string target_;     // where the file is to appear
  std::string folder_;     // the target's, with a slash at its end
  std::string temporary_;  // empty while the temporary file has no name
  std::string buffer_;     // belongs at the offset written_
  std::uint64_t written_ = 0;
  int descriptor_ = -1;
  std::shared_ptr<const InputFile> source_;  // what was copied
  bool copiedByHand_ = false;
  std::shared_ptr<const InputFile> loaded_;  // where it is the target
  std::optional<std::pair<dev_t, ino_t>> replaced_;
};

}  // namespace engine
