// SPDX-License-Identifier: Apache-2.0
#include "host/files/InputList.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"

namespace {

bool EndsInPdf(std::string_view name) {
  return name.size() > 4 && strncasecmp(name.end() - 4, ".pdf", 4) == 0;
}

std::string RealPath(std::string_view name) {
  char* const found = realpath(std::string(name).c_str(), nullptr);
  std::string path = found != nullptr ? found : "";
  std::free(found);
  return path;
}

std::optional<std::vector<std::string>> NamesIn(const std::string& folder) {
  DIR* const dir = opendir(folder.c_str());
  if (dir == nullptr) return std::nullopt;
  std::vector<std::string> names;
  while (const dirent* const entry = readdir(dir)) {
    if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
      names.emplace_back(entry->d_name);
  }
  closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadAll(const std::string& listFile) {
  const auto fail = [&] {
    return CommandError(kExitUsage,
                        QStringLiteral("Cannot read the list of files '%1': %2")
                            .arg(NativeName::ToText(listFile), QString::fromLocal8Bit(std::strerror(errno))));
  };
  const int descriptor = listFile == "-" ? STDIN_FILENO : open(listFile.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw fail();
  std::string content;
  char block[1 << 16];
  for (;;) {
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      const CommandError error = fail();
      if (descriptor != STDIN_FILENO) close(descriptor);
      throw error;
    }
    if (count == 0) break;
    content.append(block, static_cast<std::size_t>(count));
  }
  if (descriptor != STDIN_FILENO) close(descriptor);
  return content;
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

void InputList::Add(const std::string& name) {
  const std::optional<FileStatus> status = lookup_.Get(name);
  if (recursive_ && status && S_ISDIR(status->mode)) {
    const std::string folder = name.back() == '/' ? name : name + '/';
    AddFolder(folder, folder.size());
    return;
  }
  const std::size_t slash = name.rfind('/');
  AddFile(name, slash == std::string::npos ? 0 : slash + 1, status);
}

void InputList::AddFrom(const std::string& listFile) {
  const std::string content = ReadAll(listFile);
  const char separator = content.find('\0') == std::string::npos ? '\n' : '\0';
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = std::min(content.find(separator, begin), content.size());
    if (end > begin) Add(content.substr(begin, end - begin));
    begin = end + 1;
  }
}

// `folder` ends in a slash.
void InputList::AddFolder(const std::string& folder, std::size_t relative) {
  const std::optional<std::vector<std::string>> names = NamesIn(folder);
  if (!names) return AddFile(folder, relative, lookup_.Get(folder));
  for (const std::string& name : *names) {
    const std::string path = folder + name;
    std::optional<FileStatus> status = lookup_.Get(path, false);
    if (!status) continue;
    if (S_ISDIR(status->mode)) {
      const bool leftOut = leaveOut_ != nullptr && *leaveOut_ == status->identity;
      if (!leftOut) AddFolder(path + '/', relative);
    } else if (EndsInPdf(name)) {
      if (S_ISLNK(status->mode)) status = lookup_.Get(path);
      if (status && !S_ISREG(status->mode)) continue;
      AddFile(path, relative, status);
    }
  }
}

void InputList::AddFile(std::string_view name, std::size_t relative, const std::optional<FileStatus>& status) {
  Entry entry{names_.size(), static_cast<std::uint32_t>(relative), -1, Kind::kFile};
  if (status) {
    if (S_ISDIR(status->mode)) entry.kind = Kind::kFolder;
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
