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

FileQuery::FileQuery(const InputList& inputs, const FileQuestion& question, std::function<Clock::time_point()> now)
    // Where the answers can be seen as they come, a bar would only flicker between them.
    : inputs_(inputs),
      question_(question),
      readAsTheyCome_(!IsRegularFile(STDOUT_FILENO)),
      now_(std::move(now)),
      nextSince_(now_()),
      progress_(isatty(STDOUT_FILENO) != 1) {}

void FileQuery::RunHere() {
  Begin();
  for (std::size_t item = 0; item < inputs_.Count(); ++item) {
    const std::string error = AskFile(item, [this](std::string_view text) { PrintText(text); });
    AddNotes(TakeNotes());
    Settle(item, {}, error);
    Flush();
  }
}

void FileQuery::Begin() {
  library_ = PdfLibrary::Open(question_.libraryFile);
  MemoryLimit::Set(question_.memoryLimit);
}

// Returns why there is no answer, or not all of it; an empty text when there is.
std::string FileQuery::AskFile(std::size_t item, const FileQuestion::Print& print) {
  const std::string file = inputs_.File(item);
  std::string error = inputs_.Problem(item);
  if (error.empty()) error = PdfLibrary::LoadDocument(*library_, file, question_.passwords);
  if (!error.empty()) return error;
  try {
    question_.answer(*library_, file, print);
  } catch (const std::exception& exception) {
    error = exception.what();
  }
  library_->RemoveDocument(library_->SelectedDocument());
  return error;
}

std::string FileQuery::Work(std::size_t item) {
  std::string text;
  const std::string error = AskFile(item, [&](std::string_view part) { text += part; });
  const std::string notes = TakeNotes();
  RecordFraming::Wrap(text, {notes, error});
  return text;
}

void FileQuery::Take(std::size_t item, std::string_view result) {
  const RecordFraming::Fields fields = RecordFraming::Parse(result);
  AddNotes(fields[0]);
  Settle(item, fields[2], fields[1]);
}

void FileQuery::Lose(std::size_t item, const std::string& reason) {
  Settle(item, {}, reason);
}

void FileQuery::Settle(std::size_t item, std::string_view text, std::string_view error) {
  ++settled_;
  if (item != next_) {
    early_.emplace(item, Answer{std::string(text), std::string(error)});
    return;
  }
  Print(item, text, error);
  for (++next_;; ++next_) {
    const auto answered = early_.find(next_);
    if (answered != early_.end()) {
      Print(next_, answered->second.text, answered->second.error);
      early_.erase(answered);
    } else if (ahead_.erase(next_) == 0) {
      break;
    }
  }
  nextSince_ = now_();
}

void FileQuery::PrintEarly() {
  for (const auto& [item, answer] : early_) {
    Print(item, answer.text, answer.error);
    ahead_.insert(item);
  }
  early_.clear();
}

void FileQuery::Finish() {
  PrintEarly();
  WriteOutput();
  progress_.Hide();
}

void FileQuery::Print(std::size_t item, std::string_view text, std::string_view error) {
  PrintText(text);
  if (error.empty()) return;
  anyFailed_ = true;
  const std::string file = inputs_.File(item);
  if (question_.failure) return PrintText(question_.failure(file, std::string(error)));
  WriteOutput();
  progress_.Hide();
  Console::ErrorAbout(file, error);
}

// Collects what is short.
void FileQuery::PrintText(std::string_view text) {
  constexpr std::size_t kBlock = 64 * 1024;
  if (output_.size() + text.size() >= kBlock) WriteOutput();
  if (text.size() >= kBlock) return Write(text);
  output_ += text;
}

void FileQuery::Flush() {
  progress_.Show(settled_, inputs_.Count());
  if (question_.prompt && readAsTheyCome_ && now_() - nextSince_ >= kLongestWait) PrintEarly();
  WriteOutput();
}

void FileQuery::WriteOutput() {
  Write(output_);
  output_.clear();
}

void FileQuery::Write(std::string_view text) {
  if (text.empty() || Console::WriteAll(STDOUT_FILENO, text)) return;
  const int error = errno;
  progress_.Hide();
  throw CommandError(
      kExitSomeFailed,
      QStringLiteral("Cannot write the standard output: %1").arg(QString::fromLocal8Bit(std::strerror(error))));
}
