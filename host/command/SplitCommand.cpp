// SPDX-License-Identifier: Apache-2.0
#include "host/command/SplitCommand.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <QFileInfo>
#include <unordered_map>

#include "host/base/CommandError.h"
#include "host/base/Console.h"
#include "host/base/Counted.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"
#include "host/files/FileLookup.h"
#include "host/files/FileParts.h"
#include "host/files/InputList.h"
#include "host/files/OutputNames.h"

namespace {

constexpr int kMostParts = 1000000;

// 0 for a file that cannot be looked up; the run reports it.
std::vector<std::uint64_t> SizesOf(const InputList& inputs, const std::vector<std::size_t>& files) {
  std::vector<std::uint64_t> sizes;
  sizes.reserve(files.size());
  FileLookup lookup;
  for (const std::size_t file : files) {
    Interruption::Check();
    const std::optional<FileStatus> status = lookup.Get(inputs.File(file));
    sizes.push_back(status ? status->size : 0);
  }
  return sizes;
}

// A file that is named twice belongs to one part only.
std::vector<std::size_t> DifferentFiles(const InputList& inputs) {
  std::vector<std::size_t> files;
  for (std::size_t input = 0; input < inputs.Count(); ++input) {
    if (const long same = inputs.SameFileAs(input); same < 0) {
      files.push_back(input);
    } else {
      Console::ErrorAbout(inputs.File(input),
                          "left out: the same file as " + inputs.File(static_cast<std::size_t>(same)));
    }
  }
  return files;
}

// All or none.
void WriteParts(const std::string& prefix, const std::vector<std::vector<std::string>>& parts, bool nul) {
  std::vector<std::string> written;
  for (std::size_t part = 0; part < parts.size(); ++part) {
    const std::string name = FileParts::Name(prefix, part, parts.size());
    const std::string problem = FileParts::Write(name, parts[part], nul);
    if (problem.empty()) {
      written.push_back(name);
      continue;
    }
    for (const std::string& done : written) unlink(done.c_str());
    throw CommandError(
        kExitUsage,
        QStringLiteral("Cannot write '%1': %2").arg(NativeName::ToText(name), QString::fromStdString(problem)));
  }
}

}  // namespace

SplitCommand::SplitCommand()
    : BatchCommand(QStringLiteral("split"),
                   QStringLiteral("Splits a list of files into N parts of about as many bytes.")) {
  AddInputOptions();
  AddOption(
      QStringLiteral("output-dir"),
      QStringLiteral("The folder that all parts will write to: refuses files that would get the same name there."),
      QStringLiteral("DIR"));
  AddOption(QStringLiteral("prefix"),
            QStringLiteral("How the parts' names begin (default: part-): part-0000.part, part-0001.part and so on."),
            QStringLiteral("PREFIX"));
  parser_.addPositionalArgument(QStringLiteral("N"), QStringLiteral("The number of parts."), QStringLiteral("N"));
  AddFileArgument();
  AddExample(QStringLiteral("split 100 --files-from files.txt"));
  AddExample(QStringLiteral("split 8 --recursive --output-dir out --prefix lists/part- archive/"));
}

void SplitCommand::Check() {
  const QStringList arguments = parser_.positionalArguments();
  parts_ = arguments.isEmpty() ? 0 : arguments.constFirst().toInt();
  if (parts_ < 1 || parts_ > kMostParts) {
    throw CommandError(kExitUsage,
                       QStringLiteral("The first argument is the number of parts, from 1 to %1.").arg(kMostParts));
  }
  RefuseEmpty({"output-dir"});
  if (QFileInfo(Value("prefix")).isFile()) {
    throw CommandError(
        kExitUsage,
        QStringLiteral("Option '--prefix' takes the beginning of new names, but '%1' is a file.").arg(Value("prefix")));
  }
  CheckInputOptions();
}

// Each part knows its own outputs only, so that two parts would overwrite each other's, or each other's inputs.
void SplitCommand::RefuseCollisions(const InputList& inputs) const {
  if (!IsSet("output-dir")) return;
  const OutputNames names(BytesOf("output-dir").toStdString());
  FileLookup lookup;
  std::unordered_map<std::string, std::size_t> taken;
  const auto refuse = [&](std::size_t input, const std::string& what) {
    throw CommandError(kExitUsage, QStringLiteral("The output of '%1' would overwrite %2.")
                                       .arg(NativeName::ToText(inputs.File(input)), NativeName::ToText(what)));
  };
  for (std::size_t input = 0; input < inputs.Count(); ++input) {
    if (inputs.SameFileAs(input) >= 0) continue;
    const std::string file = inputs.File(input);
    const std::string base = file.substr(file.rfind('/') + 1);
    const auto [first, isNew] = taken.try_emplace(base, input);
    if (!isNew) refuse(input, "that of '" + inputs.File(first->second) + "'");
    const std::optional<FileStatus> existing = lookup.Get(names.Name(base, 0));
    if (existing && inputs.Holds(existing->identity)) refuse(input, "the input '" + names.Name(base, 0) + "'");
  }
}

int SplitCommand::Execute() {
  Interruption::Install();
  const std::string prefix = IsSet("prefix") ? BytesOf("prefix").toStdString() : "part-";
  if (const std::vector<std::string> existing = FileParts::Existing(prefix); !existing.empty()) {
    throw CommandError(kExitUsage, QStringLiteral("There are parts already, for example '%1'; remove them first.")
                                       .arg(NativeName::ToText(existing.front())));
  }
  const std::optional<FileIdentity> output = IdentityOf(BytesOf("output-dir").toStdString());
  InputList inputs(IsSet("recursive"), output ? &*output : nullptr);
  CollectInputs(inputs);
  RefuseCollisions(inputs);

  const std::vector<std::size_t> files = DifferentFiles(inputs);
  const std::vector<FileParts::Part> parts =
      FileParts::Balance(SizesOf(inputs, files), static_cast<std::size_t>(parts_));
  std::vector<std::vector<std::string>> names(parts.size());
  QByteArray listing;
  bool nul = false;
  for (std::size_t part = 0; part < parts.size(); ++part) {
    for (const std::size_t file : parts[part].files) {
      names[part].push_back(inputs.File(files[file]));
      nul = nul || names[part].back().find('\n') != std::string::npos;
    }
    listing += Console::OneLine(FileParts::Name(prefix, part, parts.size())) + '\t' +
               QByteArray::number(static_cast<qulonglong>(names[part].size())) + '\t' +
               QByteArray::number(static_cast<qulonglong>(parts[part].bytes)) + '\n';
  }
  WriteParts(prefix, names, nul);
  if (files.size() < parts.size()) {
    Console::Error(QString::fromStdString("There are more parts than files (" + Counted(parts.size(), "part") + ", " +
                                          Counted(files.size(), "file") + "): the last ones are empty."));
  }
  return Console::Print(listing) ? kExitDone : kExitSomeFailed;
}
