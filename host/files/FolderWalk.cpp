// SPDX-License-Identifier: Apache-2.0
#include "host/files/FolderWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

#include "host/base/Descriptor.h"
#include "host/base/Interruption.h"

namespace {

// At most so many of the nested folders are open at once. Those above are opened again when the walk comes back to
// them.
constexpr std::size_t kMostOpen = 64;

struct Name {
  std::string text;
  unsigned char type;  // as readdir() has it: often known, without the right to look it up
};

// One of the nested folders, from the walked one to the current one.
struct Level {
  Descriptor folder;
  FileIdentity identity;
  std::size_t pathLength;
  std::vector<Name> names;
  std::size_t next = 0;
};

// Appends the names in the folder; the error that cut the list short, or 0.
int ReadNames(int folder, std::vector<Name>& names) {
  const int copy = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  DIR* const dir = copy < 0 ? nullptr : fdopendir(copy);
  if (dir == nullptr) {
    const int error = errno;
    if (copy >= 0) close(copy);
    return error;
  }
  errno = 0;
  while (const dirent* const entry = readdir(dir)) {
    const std::string_view text(entry->d_name);
    if (text != "." && text != "..") names.push_back({std::string(text), entry->d_type});
  }
  const int error = errno;
  closedir(dir);
  std::sort(names.begin(), names.end(), [](const Name& one, const Name& other) { return one.text < other.text; });
  return error;
}

class Walk {
 public:
  Walk(const WalkRules& rules, const std::function<void(const FolderEntry&)>& each) : rules_(rules), each_(each) {}

  void Run(const std::string& folder) {
    path_ = folder;
    Enter(AT_FDCWD, folder.c_str(), 0);
    while (!levels_.empty()) {
      Level& level = levels_.back();
      path_.resize(level.pathLength);
      if (level.next == level.names.size()) {
        Leave();
      } else {
        Visit(level.folder.Get(), level.names[level.next++]);
      }
    }
  }

 private:
  void Fail(int error) { each_({path_, std::nullopt, error}); }

  // The folder whose path the walk has reached. `flags` are for open().
  void Enter(int parent, const char* name, int flags) {
    Interruption::Check();
    if (path_.back() != '/') path_ += '/';
    Level level{Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags)), {}, path_.size(), {}};
    if (!level.folder) return Fail(errno);
    struct stat status = {};
    fstat(level.folder.Get(), &status);
    level.identity = {status.st_dev, status.st_ino};
    if (const int error = ReadNames(level.folder.Get(), level.names)) Fail(error);
    levels_.push_back(std::move(level));
    if (levels_.size() > kMostOpen) levels_[levels_.size() - 1 - kMostOpen].folder.Close();
  }

  void Leave() {
    const Level left = std::move(levels_.back());
    levels_.pop_back();
    if (levels_.empty() || levels_.back().folder) return;
    Level& level = levels_.back();
    level.folder = Descriptor(openat(left.folder.Get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status = {};
    if (level.folder && fstat(level.folder.Get(), &status) == 0 &&
        level.identity == FileIdentity{status.st_dev, status.st_ino}) {
      return;
    }
    // Somebody moved the folder that was just left.
    path_.resize(level.pathLength);
    Fail(ESTALE);
    level.next = level.names.size();
    level.folder.Close();
  }

  bool MayEnter(const struct stat& status) const {
    const bool leftOut = rules_.leaveOut != nullptr && *rules_.leaveOut == FileIdentity{status.st_dev, status.st_ino};
    return rules_.recursive && !leftOut;
  }

  void Visit(int folder, const Name& name) {
    path_ += name.text;
    struct stat status = {};
    if (fstatat(folder, name.text.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      const bool isFolder = name.type == DT_DIR || name.type == DT_UNKNOWN;
      if (errno != ENOENT && ((rules_.recursive && isFolder) || rules_.wanted(name.text))) Fail(errno);
    } else if (S_ISDIR(status.st_mode)) {
      if (MayEnter(status)) Enter(folder, name.text.c_str(), O_NOFOLLOW);
    } else if (rules_.wanted(name.text)) {
      const bool isLink = S_ISLNK(status.st_mode);
      const bool leads = !isLink || fstatat(folder, name.text.c_str(), &status, 0) == 0;
      if (!leads) return each_({path_, std::nullopt, 0, isLink});
      if (S_ISREG(status.st_mode)) each_({path_, FileStatus(status), 0, isLink});
    }
  }

  const WalkRules& rules_;
  const std::function<void(const FolderEntry&)>& each_;
  std::string path_;
  std::vector<Level> levels_;
};

}  // namespace

bool IsPdfName(std::string_view name) {
  return name.size() > 4 && strncasecmp(name.end() - 4, ".pdf", 4) == 0;
}

void WalkFolder(const std::string& folder, const WalkRules& rules,
                const std::function<void(const FolderEntry&)>& each) {
  Walk(rules, each).Run(folder);
}
