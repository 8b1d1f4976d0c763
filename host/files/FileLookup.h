// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

#include "host/base/Descriptor.h"

// The system's identity of a file or folder, the same for all its names.
struct FileIdentity {
  dev_t device;
  ino_t inode;
  bool operator==(const FileIdentity& other) const { return device == other.device && inode == other.inode; }
};

template <>
struct std::hash<FileIdentity> {
  std::size_t operator()(const FileIdentity& identity) const {
    return static_cast<std::size_t>(identity.inode * 0x9E3779B97F4A7C15ULL ^ identity.device);
  }
};

// What the system says of a name.
struct FileStatus {
  explicit FileStatus(const struct stat& status)
      : identity{status.st_dev, status.st_ino},
        mode(status.st_mode),
        links(status.st_nlink),
        size(static_cast<std::uint64_t>(status.st_size)) {}

  FileIdentity identity;
  mode_t mode;
  nlink_t links;
  std::uint64_t size;
};

// The identity of a file or folder that exists and can be reached, links followed.
std::optional<FileIdentity> IdentityOf(const std::string& name);

// stat() for many names. Neighbours mostly lie in one folder, whose own path is looked up once.
class FileLookup {
 public:
  // Returns nothing when the file does not exist or cannot be reached. Symbolic links are followed.
  std::optional<FileStatus> Get(const std::string& name);

 private:
  std::string folder_;  // with its slash
  Descriptor descriptor_;
};
