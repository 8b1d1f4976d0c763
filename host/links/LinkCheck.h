// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <QString>
#include <string>

// Looks in a folder whether the pages of a web site are there.
class LinkCheck {
 public:
  // `text` is "URL=FOLDER": the folder holds the pages at the URL and below. Throws CommandError(kExitUsage) for
  // anything else and for a folder that does not exist. The URL is not checked.
  explicit LinkCheck(const QString& text);

  // As given.
  const QString& Url() const { return given_; }
  // How much of a target the URL is; nothing when the target is not below the URL. Targets are what NormalizedLink()
  // makes of them, here and below.
  std::optional<std::size_t> Covers(const std::string& target) const;
  // Whether the file of a target below the URL is there, index.html for a folder. Query and fragment do not count. What
  // lies outside the folder, also through links of the file system, is not there.
  bool Has(const std::string& target) const;

 private:
  QString given_;
  std::string url_;               // normalized, without a slash at its end
  std::filesystem::path folder_;  // without symbolic links
};
