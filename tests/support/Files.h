// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <ostream>
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <string>

// A file name or a file's content, from any of the types that tests use.
struct FileBytes {
  FileBytes(const char* text) : bytes(text) {}
  FileBytes(std::string text) : bytes(std::move(text)) {}
  FileBytes(const QByteArray& text) : bytes(text.toStdString()) {}
  FileBytes(const QString& name);

  std::string bytes;
};

// How failed comparisons show Qt's texts, rather than as lists of characters.
inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
  *out << '"' << bytes.toStdString() << '"';
}

// Creates or replaces a file with that content, and the folders above it.
void WriteFile(const FileBytes& path, const FileBytes& content = "x");
// The content in one type or the other; empty for a file that cannot be opened, which is a failure for ReadFile only.
QByteArray ReadFile(const FileBytes& path);
std::string ReadText(const FileBytes& path);
// Every entry below the folder, hidden ones included, as sorted relative paths.
QStringList Tree(const QString& folder);
void SetTime(const QString& path, const QDateTime& time);
QVariant IniValue(const QString& path, const QString& key);

struct ToolResult {
  int status = -1;
  std::string output;  // standard output and standard error
};
// Runs a command line of the shell.
ToolResult RunTool(const std::string& command);

// Another process, started now, that runs a task when Run() is called.
class OtherProcess {
 public:
  explicit OtherProcess(const std::function<void()>& task);
  void Run();  // and waits for its end

 private:
  int mPipe[2];
  int mProcess;
};

// While one lives, this process can write nothing to regular files, as on a full disk. Holds for root too.
class FullDisk {
 public:
  FullDisk();
  ~FullDisk();
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
};

// While one lives, the file can only be read. Holds for root too.
class ReadOnlyFile {
 public:
  explicit ReadOnlyFile(const QString& path);
  ~ReadOnlyFile();
  ReadOnlyFile(const ReadOnlyFile&) = delete;
  ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

 private:
  QString mPath;
};

// Calls `save` twice: on a full disk, and while the file is read-only.
void FailToSave(const QString& file, const std::function<void()>& save);
