// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/files/FileLookup.h"

// The input files of a run in the order they were given. Names are packed into one block: a run over many files keeps
// little more in memory than their names.
class InputList {
 public:
  // With `recursive`, a folder means the files that WalkFolder finds below it. `leaveOut`, if not null, is a folder
  // that is not entered: the output's own.
  InputList(bool recursive, const FileIdentity* leaveOut) : recursive_(recursive), leaveOut_(leaveOut) {}

  // "folder/./below/a.pdf" counts as found below "folder". Throws as Interruption::Check does, as the next one.
  void Add(const std::string& name);
  // The names of a file, "-" for the standard input: separated by NUL if one occurs, else by newlines; empty names are
  // left out. Throws CommandError(kExitUsage) when it cannot be read.
  void AddFrom(const std::string& listFile);

  std::size_t Count() const { return entries_.size(); }
  std::string File(std::size_t index) const { return std::string(NameOf(index)); }
  // The part of the name that an output folder repeats: below a given folder the path from there, else the base name.
  std::string Relative(std::size_t index) const;
  // The path from which values for this file are made: relative to `root`, a real path that ends in a slash, or without
  // a root to the given folder. No value when the file is not below it. A file that was given itself counts as below
  // the current folder.
  std::optional<std::string> PathBelow(const std::string& root, std::size_t index) const;
  // Why this entry cannot be processed, or an empty text. Whether a file can be opened shows later.
  std::string Problem(std::size_t index) const;
  // The earlier entry that names the very same file, or -1. Hard links with different names are different files.
  long SameFileAs(std::size_t index) const { return entries_[index].sameAs; }
  // The folders below which nothing was found, readable or not.
  const std::vector<std::string>& EmptyFolders() const { return emptyFolders_; }
  // The files of LeftoverFiles in the walked folders.
  const std::vector<std::string>& Leftovers() const { return leftovers_; }
  // The folders, with a slash at their ends, of the files that were named one by one; empty for the current one.
  const std::unordered_set<std::string>& FoldersOfNames() const { return foldersOfNames_; }
  bool Holds(const FileIdentity& identity) const { return identities_.count(identity) != 0; }

 private:
  struct Entry {
    std::uint64_t offset;
    std::uint32_t relative : 31;   // where the relative part starts
    std::uint32_t fromFolder : 1;  // below a given folder
    std::int32_t sameAs;
  };

  void AddFile(std::string_view name, std::size_t relative, const std::optional<FileStatus>& status,
               const std::string& problem);
  void AddFolder(const std::string& folder);
  std::int32_t FindSame(std::string_view name, const FileStatus& status);
  std::string_view NameOf(std::size_t index) const;

  bool recursive_;
  std::vector<std::string> emptyFolders_;
  const FileIdentity* leaveOut_;
  std::vector<std::string> leftovers_;
  std::unordered_set<std::string> foldersOfNames_;
  std::string lastFolder_;
  FileLookup lookup_;
  std::string names_;
  std::vector<Entry> entries_;
  std::unordered_map<FileIdentity, std::int32_t> identities_;
  std::unordered_map<std::size_t, std::string> problems_;
};
