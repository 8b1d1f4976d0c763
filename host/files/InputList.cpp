// SPDX-License-Identifier: Apache-2.0
#include "host/files/InputList.h"

#include <climits>
#include <cstdlib>
#include <system_error>

#include "host/base/Interruption.h"
#include "host/base/NamedInput.h"
#include "host/files/FolderWalk.h"
#include "host/files/LeftoverFiles.h"

namespace {

std::string ErrorText(int error) {
  return std::generic_category().message(error);
}

// Where the part begins that an output folder repeats: after the last "/./". Nothing when that part would lead out of
// the output folder.
std::optional<std::size_t> MarkedPart(const std::string& name) {
  constexpr std::string_view kMark = "/./";
  // Most names have none, and looking forward is much faster.
  if (name.find(kMark) == std::string::npos) return std::nullopt;
  const std::size_t begin = name.rfind(kMark) + kMark.size();
  const bool leadsOut = name.compare(begin, 3, "../") == 0 || name.find("/../", begin) != std::string::npos;
  return leadsOut ? std::nullopt : std::optional(begin);
}

std::string RealPath(std::string_view name) {
  char* const found = realpath(std::string(name).c_str(), nullptr);
  std::string path = found != nullptr ? found : "";
  std::free(found);
  return path;
}

}  // namespace

std::string_view InputList::NameOf(std::size_t index) const {
  const std::uint64_t begin = entries_[index].offset;
  const std::uint64_t end = index + 1 < entries_.size() ? entries_[index + 1].offset : names_.size();
  return std::string_view(names_).substr(begin, end - begin);
}

std::string InputList::Relative(std::size_t index) const {
  return std::string(NameOf(index).substr(entries_[index].relative));
}

std::optional<std::string> InputList::PathBelow(const std::string& root, std::size_t index) const {
  const std::string_view name = NameOf(index);
  const std::size_t slash = name.rfind('/');
  if (root.empty()) {
    const bool isBare = slash == std::string_view::npos || name.substr(0, slash) == ".";
    const bool fromFolder = entries_[index].fromFolder != 0;
    return isBare || fromFolder ? std::optional(Relative(index)) : std::nullopt;
  }
  // The file itself may be a link that leads elsewhere.
  const std::string path = RealPath(slash == std::string_view::npos ? "." : name.substr(0, slash + 1)) + '/';
  if (path.compare(0, root.size(), root) != 0) return std::nullopt;
  return path.substr(root.size()) + std::string(slash == std::string_view::npos ? name : name.substr(slash + 1));
}

std::string InputList::Problem(std::size_t index) const {
  const auto found = problems_.find(index);
  return found != problems_.end() ? found->second : std::string();
}

void InputList::Add(const std::string& name) {
  Interruption::Check();
  const std::optional<FileStatus> status = lookup_.Get(name);
  const bool isFolder = status && S_ISDIR(status->mode);
  if (recursive_ && isFolder) return AddFolder(name.back() == '/' ? name : name + '/');
  const std::size_t base = name.rfind('/') + 1;  // npos + 1 is 0
  const bool sameFolder = !foldersOfNames_.empty() && name.compare(0, base, lastFolder_) == 0;
  if (!sameFolder) foldersOfNames_.insert(lastFolder_ = name.substr(0, base));
  const std::optional<std::size_t> marked = MarkedPart(name);
  AddFile(name, marked.value_or(base), status, isFolder ? "is a folder (use --recursive for the files below it)" : "");
  entries_.back().fromFolder = marked.has_value() ? 1 : 0;
}

void InputList::AddFrom(const std::string& listFile) {
  NamedInput::ReadNames(listFile, "list of files", [&](const std::string& name) { Add(name); });
}

// `folder` ends in a slash.
void InputList::AddFolder(const std::string& folder) {
  const std::size_t before = Count();
  const auto wanted = [](std::string_view name) { return IsPdfName(name) || LeftoverFiles::IsName(name); };
  WalkFolder(folder, {wanted, leaveOut_}, [&](const FolderEntry& entry) {
    if (LeftoverFiles::IsName(std::string_view(entry.path).substr(entry.path.rfind('/') + 1))) {
      return leftovers_.push_back(entry.path);
    }
    const char* const what = entry.path.back() == '/' ? "cannot read the folder: " : "cannot be looked up: ";
    AddFile(entry.path, folder.size(), entry.status, entry.error != 0 ? what + ErrorText(entry.error) : "");
    entries_.back().fromFolder = 1;
  });
  if (Count() == before) emptyFolders_.push_back(folder);
}

void InputList::AddFile(std::string_view name, std::size_t relative, const std::optional<FileStatus>& status,
                        const std::string& problem) {
  Entry entry{names_.size(), static_cast<std::uint32_t>(relative) & 0x7FFFFFFFU, 0, -1};
  const std::size_t index = entries_.size();
  if (!problem.empty()) {
    problems_.emplace(index, problem);
  } else if (name.size() >= PATH_MAX) {
    problems_.emplace(index,
                      "its path is too long for the system, which takes " + std::to_string(PATH_MAX - 1) + " bytes");
  } else if (status) {
    entry.sameAs = FindSame(name, *status);
  }
  names_ += name;
  entries_.push_back(entry);
}

std::int32_t InputList::FindSame(std::string_view name, const FileStatus& status) {
  const auto [known, isNew] = identities_.try_emplace(status.identity, static_cast<std::int32_t>(entries_.size()));
  if (isNew) return -1;
  const auto first = known->second;
  const bool hardLinked = status.links > 1;
  if (hardLinked && RealPath(NameOf(static_cast<std::size_t>(first))) != RealPath(name)) return -1;
  return first;
}
