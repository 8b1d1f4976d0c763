// SPDX-License-Identifier: Apache-2.0
#include "host/run/FileQuery.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/run/MemoryLimit.h"
#include "host/run/RecordFraming.h"

namespace {

bool IsRegularFile(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

FileQuery::FileQuery(const InputList& inputs, const FileQuestion& question)
    // Where the answers can be seen as they come, a bar would only flicker between them.
    : inputs_(inputs),
      question_(question),
      readAsTheyCome_(!IsRegularFile(STDOUT_FILENO)),
      nextSince_(Clock::now()),
      progress_(isatty(STDOUT_FILENO) != 1) {}

void FileQuery::RunHere() {
  Begin();
  for (std::size_t item = 0; item < inputs_.Count(); ++item) {
    Take(item, Work(item));
    Flush();
  }
}

void FileQuery::Begin() {
  library_ = PdfLibrary::Open(question_.libraryFile);
  MemoryLimit::Set(question_.memoryLimit);
}

std::string FileQuery::Work(std::size_t item) {
  const std::string file = inputs_.File(item);
  std::string error = inputs_.Problem(item);
  std::string text;
  if (error.empty()) error = PdfLibrary::LoadDocument(*library_, file, question_.passwords);
  if (error.empty()) {
    try {
      text = question_.answer(*library_, file);
    } catch (const std::exception& exception) {
      error = exception.what();
    }
    library_->RemoveDocument(library_->SelectedDocument());
  }
  std::string bytes;
  RecordFraming::Append(bytes, {text, error});
  return bytes;
}

void FileQuery::Take(std::size_t item, std::string_view result) {
  const RecordFraming::Fields fields = RecordFraming::Parse(result);
  Settle(item, {std::string(fields[0]), std::string(fields[1])});
}

void FileQuery::Lose(std::size_t item, const std::string& reason) {
  Settle(item, {{}, reason});
}

void FileQuery::Settle(std::size_t item, Answer answer) {
  ++settled_;
  early_.emplace(item, std::move(answer));
  for (const std::size_t before = next_;; ++next_) {
    const auto answered = early_.find(next_);
    if (answered != early_.end()) {
      Append(inputs_.File(next_), answered->second);
      early_.erase(answered);
    } else if (ahead_.erase(next_) == 0) {
      if (next_ != before) nextSince_ = Clock::now();
      return;
    }
  }
}

void FileQuery::AppendEarly() {
  for (const auto& [item, answer] : early_) {
    Append(inputs_.File(item), answer);
    ahead_.insert(item);
  }
  early_.clear();
}

void FileQuery::Finish() {
  AppendEarly();
  Write();
  progress_.Hide();
}

void FileQuery::Append(const std::string& file, const Answer& answer) {
  if (answer.error.empty()) {
    output_ += answer.text;
    return;
  }
  anyFailed_ = true;
  if (question_.failure) {
    output_ += question_.failure(file, answer.error);
    return;
  }
  Write();
  progress_.Hide();
  Console::ErrorAbout(file, answer.error);
}

void FileQuery::Flush() {
  progress_.Show(settled_, inputs_.Count());
  if (question_.prompt && readAsTheyCome_ && Clock::now() - nextSince_ >= kLongestWait) AppendEarly();
  Write();
}

void FileQuery::Write() {
  if (output_.empty()) return;
  const bool written = Console::WriteAll(STDOUT_FILENO, output_);
  output_.clear();
  if (written) return;
  progress_.Hide();
  throw CommandError(
      kExitSomeFailed,
      QStringLiteral("Cannot write the standard output: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
}
