// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <QString>
#include <string>

// Checks whether the pages of a web site are in a folder.
class LinkCheck {
 public:
  // `text` is "URL=FOLDER": the folder holds the pages at the URL and below. Throws CommandError(kExitUsage) for
  // anything else and for a folder that does not exist. The URL is not checked.
  explicit LinkCheck(const QString& text);

  // As given.
  const QString& Url() const { return given_; }
  // The length of the URL's part of the target; nothing when the target is not below the URL. Here and below, targets
  // are results of NormalizedLink().
  std::optional<std::size_t> Covers(const std::string& target) const;
  // Whether the file of a target below the URL exists, index.html for a folder. Query and fragment do not count. A file
  // outside the folder, also one that a symbolic link leads to, does not count as existing.
  bool Has(const std::string& target) const;

 private:
  QString given_;
  std::string url_;               // normalized, without a slash at its end
  std::filesystem::path folder_;  // without symbolic links
};
