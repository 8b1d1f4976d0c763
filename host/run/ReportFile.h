// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <QSaveFile>
#include <QString>
#include <string>
#include <string_view>

#include "host/base/Descriptor.h"
#include "host/files/ProtectedFiles.h"

// The file that a run's JSON records are written to, in one of two forms: lines, written as they come, or an array,
// written at the end and at once.
class ReportFile {
 public:
  // "-" means lines on the standard output. A name that ends in ".jsonl", or that is not a regular file, means lines;
  // any other name means an array, and an empty one no report. `append` continues a report of lines. Several runs may
  // do so at once: each line is appended whole, if the file system can do that (NFS cannot). Throws
  // CommandError(kExitUsage) when the report cannot be written, or is to be replaced while another run writes it.
  // Throws what Interruption::Check throws, also while a named pipe has no reader.
  ReportFile(const std::string& name, bool append);

  // Whether a report of that name consists of lines.
  static bool IsLines(const std::string& name);
  // Keeps results from replacing the report.
  void Protect(ProtectedFiles& files) const;

  bool IsWanted() const { return form_ != Form::kNone; }
  bool IsOnStandardOutput() const { return name_ == "-"; }
  void Add(std::string_view json);
  // Writes out what was added, as far as the form allows.
  void Flush();
  // Completes the report. False, after an error message to the user, when it could not be written.
  bool Finish();

 private:
  enum class Form { kNone, kLines, kArray };

  void OpenLines(bool append);
  void Empty();
  void Write();
  bool WriteLines(std::string_view text);
  void Fail();
  QString Message() const;

  Form form_ = Form::kNone;
  std::string name_;
  Descriptor lines_;
  std::unique_ptr<QSaveFile> array_;
  std::string pending_;
  bool first_ = true;
  bool stale_ = false;    // it still has an earlier run's lines
  bool regular_ = false;  // a file on a disk, which never has to be waited for
  QString error_;         // of the first failure; nothing is written after it
};
