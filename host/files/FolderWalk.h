// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/files/FileLookup.h"

// One name below a walked folder.
struct FolderEntry {
  const std::string& path;           // from the walked folder's own name on; of a folder, with a slash at its end
  std::optional<FileStatus> status;  // of a file, links followed; nothing for a link that leads nowhere
  int error;                         // why the name, or what the folder holds, cannot be looked up; 0 for a file
  bool isLink = false;               // the name itself
};

// What a walk goes over and reports.
struct WalkRules {
  bool (*wanted)(std::string_view name);   // which files are reported
  const FileIdentity* leaveOut = nullptr;  // a folder that is not entered, if not null
  bool recursive = true;                   // enters the folders below
};

// Whether the name ends in ".pdf", in any case.
bool IsPdfName(std::string_view name);

// Calls `each` for the wanted files below a folder, folder by folder in the byte order of their names, and for
// everything that cannot be looked up. Links to folders are not followed. The walk goes by descriptors, so that neither
// its depth nor the length of a path matters. A stop signal ends it as Interruption::Check does.
void WalkFolder(const std::string& folder, const WalkRules& rules, const std::function<void(const FolderEntry&)>& each);
