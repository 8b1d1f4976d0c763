// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// The original of a file that is about to be replaced, kept beside it as NAME+SUFFIX. A backup never replaces a file:
// if the name is taken, it becomes "NAME (1)SUFFIX", and so on. Unless Keep() is called, it is removed again.
class BackupFile {
 public:
  // No backup.
  BackupFile() = default;
  // Makes the backup, and returns when it is on the disk. It is a hard link, since a save writes a new file and leaves
  // the old one alone. It is a copy where the file has other names, through which it could be changed, or where the
  // file system has no hard links. A copy keeps mode and time, and the owner if the process may set it. An earlier
  // backup that is the same file is used again. Throws std::runtime_error.
  BackupFile(const std::string& file, const std::string& suffix);
  ~BackupFile();
  BackupFile(const BackupFile&) = delete;
  BackupFile& operator=(const BackupFile&) = delete;
  BackupFile(BackupFile&& other) noexcept;

  const std::string& Name() const { return name_; }
  void Keep() { made_ = false; }

  // The name that a backup made now would have.
  static std::string NextName(const std::string& file, const std::string& suffix);

 private:
  bool Make(const std::string& file);

  std::string name_;
  bool made_ = false;
};
