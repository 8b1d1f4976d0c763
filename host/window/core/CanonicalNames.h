// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Names of files with all links resolved. Neighbours mostly lie in one folder, which is looked up once.
class CanonicalNames {
 public:
  // `path` is absolute and is returned as it is when the file cannot be looked up.
  std::string Of(const std::string& path);
  // Of a file that is known to be no link: only its folder is looked up.
  std::string OfFile(const std::string& path);

 private:
  std::string folder_;
  std::string real_;  // both with a slash at the end
};
