// SPDX-License-Identifier: Apache-2.0
#include "host/run/WorkerProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"

namespace {

// In place of an item's number: the task could not begin, and this is why.
constexpr std::size_t kNotBegun = ~std::size_t{0};

bool Send(int results, std::size_t item, std::string message) {
  RecordFraming::Wrap(message, {std::string_view(reinterpret_cast<const char*>(&item), sizeof item)});
  return Console::WriteAll(results, message);
}

// The names that the PDF library of this project gives its temporary files.
bool IsTemporaryName(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);  // npos + 1 is 0
  const auto ends = [&](std::string_view end) {
    return name.size() >= end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
  };
  return name.compare(0, 9, ".vorlane-") == 0 && ends(".tmp");
}

}  // namespace

WorkerProcess::WorkerProcess(WorkerTask& task, JobBoard& board, std::list<WorkerProcess>& siblings) : inHand_(1) {
  const auto fail = [](const char* what) {
    return CommandError(kExitNotLoaded, QStringLiteral("Cannot start a worker process: %1: %2")
                                            .arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno))));
  };
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw fail("pipe");
  results_ = Descriptor(ends[0]);
  Descriptor writing(ends[1]);
  const pid_t parent = getpid();
  id_ = fork();
  if (id_ < 0) throw fail("fork");
  if (id_ > 0) return;
  Interruption::LeaveToParent(parent);
  results_.Close();
  for (WorkerProcess& sibling : siblings) sibling.results_.Close();
  Work(task, board, inHand_[0], writing.Get());
}

// The whole life of the worker.
void WorkerProcess::Work(WorkerTask& task, JobBoard& board, std::atomic<std::size_t>& inHand, int results) {
  try {
    task.Begin();
  } catch (const CommandError& error) {
    Send(results, kNotBegun, error.Message().toStdString());
    _exit(kExitNotLoaded);
  }
  const pid_t self = getpid();
  while (const std::optional<std::size_t> item = board.Claim(self)) {
    inHand = *item + 1;
    std::string result = task.Work(*item);
    inHand = 0;
    if (!Send(results, *item, std::move(result))) break;
  }
  // Nothing of the main process may be run down or flushed a second time.
  _exit(kExitDone);
}

WorkerProcess::~WorkerProcess() {
  if (id_ <= 0 || abandoned_) return;
  kill(id_, SIGKILL);
  Reap();
}

std::size_t WorkerProcess::ItemOf(const RecordFraming::Fields& fields) {
  std::size_t item = 0;
  std::memcpy(&item, fields[0].data(), sizeof item);
  if (item == kNotBegun) throw CommandError(kExitNotLoaded, QString::fromStdString(std::string(fields[1])));
  return item;
}

WorkerProcess::Duration WorkerProcess::Age(Duration passed) {
  const std::size_t item = inHand_[0];
  const bool same = item == std::exchange(aged_, item) && item != 0;
  if (Killed()) return held_ += passed;
  if (!same) return held_ = {};
  if (!IsStopped()) held_ += passed;
  return held_;
}

void WorkerProcess::Kill(const std::string& why) {
  whyKilled_ = why;
  held_ = {};
  kill(id_, SIGSTOP);
  temporaryFiles_ = TemporaryFiles();
  kill(id_, SIGKILL);
}

std::string WorkerProcess::Reap() {
  int status = 0;
  while (waitpid(id_, &status, 0) < 0 && errno == EINTR) {
  }
  id_ = 0;
  for (const TemporaryFile& file : temporaryFiles_) {
    struct stat now = {};
    // Leaves alone what another program has put there meanwhile.
    const bool same = lstat(file.name.c_str(), &now) == 0 && now.st_dev == file.device && now.st_ino == file.inode;
    if (same) unlink(file.name.c_str());
  }
  if (Killed()) return whyKilled_;
  if (WIFSIGNALED(status)) return "crashed: signal " + std::to_string(WTERMSIG(status));
  return "crashed: exit code " + std::to_string(WEXITSTATUS(status));
}

// The named temporary files that the process has open for writing.
std::vector<WorkerProcess::TemporaryFile> WorkerProcess::TemporaryFiles() const {
  std::vector<TemporaryFile> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(id_) + "/fd", error)) {
    std::error_code none;
    const std::string name = std::filesystem::read_symlink(entry.path(), none).string();
    struct stat link = {};
    struct stat file = {};
    if (none || !IsTemporaryName(name)) continue;
    // The entry's mode is how the file was opened.
    if (lstat(entry.path().c_str(), &link) != 0 || (link.st_mode & S_IWUSR) == 0) continue;
    if (stat(entry.path().c_str(), &file) == 0) files.push_back({name, file.st_dev, file.st_ino});
  }
  return files;
}

bool WorkerProcess::IsStopped() const {
  std::ifstream stream("/proc/" + std::to_string(id_) + "/stat");
  std::string text;
  std::getline(stream, text);
  const std::size_t state = text.rfind(") ");
  return state != std::string::npos && state + 2 < text.size() && (text[state + 2] == 'T' || text[state + 2] == 't');
}
