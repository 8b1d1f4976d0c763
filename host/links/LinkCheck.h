// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <optional>
#include <QString>
#include <string>

// Looks in a folder whether the pages of a web site are there.
class LinkCheck {
 public:
  // `text` is "URL=FOLDER": the folder holds what stands at the URL and below. Throws CommandError(kExitUsage) for
  // anything else and for a folder that does not exist.
  explicit LinkCheck(const QString& text);

  // Whether the target's file is there, index.html for a folder; nothing when the target is not below the URL. Query
  // and fragment do not count. What lies outside the folder, also through links of the file system, is not there.
  std::optional<bool> Has(const QString& target) const;

 private:
  std::string url_;               // as RFC 3986 writes it, without a slash at its end
  std::filesystem::path folder_;  // without symbolic links
};
