// SPDX-License-Identifier: Apache-2.0
#include "host/run/ReportFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"

namespace {

constexpr std::size_t kPendingLimit = 1 << 16;
constexpr std::chrono::milliseconds kReaderCheck(50);
// How long the reader of a pipe may take after a stop signal.
constexpr std::chrono::milliseconds kGrace(1000);
// What a pipe that is ready takes without blocking.
constexpr std::size_t kPipeBlock = 4096;

std::optional<mode_t> ModeOf(const std::string& name) {
  struct stat status = {};
  if (stat(name.c_str(), &status) != 0) return std::nullopt;
  return status.st_mode;
}

// A crash may have cut off the last line. It stays, since another run may be appending to the file just now.
bool EndsInTornLine(int descriptor) {
  const off_t end = lseek(descriptor, 0, SEEK_END);
  char last = '\n';
  return end > 0 && pread(descriptor, &last, 1, end - 1) == 1 && last != '\n';
}

// False when another run holds the lock. File systems without locks grant all of them.
bool Lock(int descriptor, int kind) {
  return flock(descriptor, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// A named pipe is opened without blocking: that fails until it has a reader, and a stop signal ends the wait.
int OpenPipe(const std::string& name) {
  for (;;) {
    const int descriptor = open(name.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0 || errno != ENXIO) return descriptor;
    Interruption::Sleep(kReaderCheck);
    Interruption::Check();
  }
}

}  // namespace

bool ReportFile::IsLines(const std::string& name) {
  static const std::string kSuffix = ".jsonl";
  if (name == "-") return true;
  if (name.size() >= kSuffix.size() && name.compare(name.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0) {
    return true;
  }
  const std::optional<mode_t> mode = ModeOf(name);
  return mode && !S_ISREG(*mode);
}

ReportFile::ReportFile(const std::string& name, bool append) : name_(name) {
  if (name.empty()) return;
  if (IsLines(name)) {
    form_ = Form::kLines;
    OpenLines(append);
  } else {
    form_ = Form::kArray;
    array_ = std::make_unique<QSaveFile>(NativeName::ToText(name));
    if (!array_->open(QIODevice::WriteOnly)) error_ = array_->errorString();
    pending_ = "[\n";
  }
  if (!error_.isNull()) throw CommandError(kExitUsage, Message());
}

void ReportFile::OpenLines(bool append) {
  const mode_t mode = name_ == "-" ? 0 : ModeOf(name_).value_or(S_IFREG);
  if (name_ == "-") {
    lines_ = Descriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
  } else if (S_ISFIFO(mode)) {
    lines_ = Descriptor(OpenPipe(name_));
  } else {
    lines_ =
        Descriptor(open(name_.c_str(), (S_ISREG(mode) ? O_RDWR : O_WRONLY) | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  }
  struct stat status = {};
  if (!lines_ || fstat(lines_.Get(), &status) != 0) return Fail();
  regular_ = S_ISREG(status.st_mode);
  if (!regular_ || name_ == "-") return;
  // A run that cannot even begin leaves the earlier run's report.
  stale_ = !append && status.st_size > 0;
  if (!Lock(lines_.Get(), stale_ ? LOCK_EX : LOCK_SH)) {
    error_ = QStringLiteral("another run is writing it");
  } else if (append && EndsInTornLine(lines_.Get())) {
    pending_ = "\n";
  }
}

void ReportFile::Protect(ProtectedFiles& files) const {
  if (lines_) files.Add(lines_.Get(), "the report");
  if (array_) files.Add(name_, "the report");
}

void ReportFile::Add(std::string_view json) {
  if (!IsWanted()) return;
  if (form_ == Form::kArray && !first_) pending_ += ",\n";
  first_ = false;
  pending_ += json;
  if (form_ == Form::kLines) pending_ += '\n';
  if (pending_.size() > kPendingLimit) Write();
}

void ReportFile::Flush() {
  if (form_ == Form::kLines && !pending_.empty()) Write();
}

void ReportFile::Fail() {
  if (error_.isNull()) error_ = QString::fromLocal8Bit(std::strerror(errno));
}

void ReportFile::Empty() {
  if (ftruncate(lines_.Get(), 0) != 0) Fail();
  // From now on other runs may append.
  Lock(lines_.Get(), LOCK_SH);
  stale_ = false;
}

void ReportFile::Write() {
  if (stale_) Empty();
  const auto size = static_cast<qint64>(pending_.size());
  if (error_.isNull() && form_ == Form::kLines && !WriteLines(pending_)) Fail();
  if (error_.isNull() && array_ && array_->write(pending_.data(), size) != size) error_ = array_->errorString();
  pending_.clear();
}

// Whole lines by one write(), so that runs that append to one file do not tear each other's lines.
bool ReportFile::WriteLines(std::string_view text) {
  while (!text.empty()) {
    if (!regular_ && !Interruption::WaitFor(lines_.Get(), POLLOUT, kGrace)) {
      errno = ETIMEDOUT;
      return false;
    }
    const std::size_t most = regular_ ? text.size() : std::min(text.find('\n') + 1, kPipeBlock);
    const ssize_t count = write(lines_.Get(), text.data(), most);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

QString ReportFile::Message() const {
  return QStringLiteral("Cannot write the report '%1': %2").arg(NativeName::ToText(name_), error_);
}

bool ReportFile::Finish() {
  if (form_ == Form::kArray) pending_ += first_ ? "]\n" : "\n]\n";
  if (IsWanted()) Write();
  // commit() does not look at what writing out the last buffer came to.
  if (array_ && error_.isNull() && (!array_->flush() || !array_->commit())) error_ = array_->errorString();
  if (error_.isNull()) return true;
  Console::Error(Message());
  return false;
}
