// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/files/FileLookup.h"

// Files that no result may replace: the report and what the run reads beside the documents. Each is known by its
// identity and by its path, so that a file that does not exist yet is protected too. Links are followed.
class ProtectedFiles {
 public:
  // `what` names the file in messages, as in "the report".
  void Add(const std::string& name, const std::string& what);
  // The file of an open descriptor; a pipe or a device needs no protection.
  void Add(int descriptor, const std::string& what);

  // What the file of this name is, or an empty text if it may be replaced.
  std::string What(const std::string& name) const;
  // The same for a file that exists.
  std::string What(const FileIdentity& identity) const;
  // Whether a file with this last part of its name could be one of them.
  bool MayHold(const std::string& name) const;

 private:
  struct Entry {
    std::string what;
    std::optional<FileIdentity> identity;
    std::optional<FileIdentity> folder;
    std::string base;
  };
  static Entry Describe(std::string name);

  std::vector<Entry> entries_;
};
