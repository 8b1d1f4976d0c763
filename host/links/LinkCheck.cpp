// SPDX-License-Identifier: Apache-2.0
#include "host/links/LinkCheck.h"

#include <algorithm>
#include <cstring>
#include <system_error>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"
#include "utils/LinkTarget.h"

namespace {

namespace fs = std::filesystem;

fs::path RealFolder(const QString& name) {
  std::error_code error;
  const fs::path folder = fs::canonical(NativeName::ToBytes(name).toStdString(), error);
  return !error && fs::is_directory(folder, error) ? folder : fs::path();
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace

LinkCheck::LinkCheck(const QString& text) {
  // Both a URL and a folder's name may hold "=".
  for (int equals = text.indexOf('='); equals > 0 && folder_.empty(); equals = text.indexOf('=', equals + 1)) {
    folder_ = RealFolder(text.mid(equals + 1));
    given_ = text.left(equals);
  }
  if (text.indexOf('=') < 1) {
    throw CommandError(kExitUsage, QStringLiteral("Option '--check' takes URL=FOLDER, not '%1'.").arg(text));
  }
  if (folder_.empty()) {
    throw CommandError(kExitUsage, QStringLiteral("There is no folder '%1'.").arg(text.mid(text.indexOf('=') + 1)));
  }
  url_ = NormalizedLink(given_).toStdString();
  while (url_.back() == '/') url_.pop_back();
}

std::optional<std::size_t> LinkCheck::Covers(const std::string& target) const {
  if (target.compare(0, url_.size(), url_) != 0) return std::nullopt;
  const bool atItsEnd = target.size() == url_.size() || std::strchr("/?#", target[url_.size()]) != nullptr;
  return atItsEnd ? std::optional(url_.size()) : std::nullopt;
}

bool LinkCheck::Has(const std::string& target) const {
  std::string rest = target.substr(url_.size());
  rest = rest.substr(0, rest.find_first_of("?#"));
  rest.erase(0, rest.find_first_not_of('/'));
  rest = QByteArray::fromPercentEncoding(QByteArray::fromStdString(rest)).toStdString();
  if (rest.find('\0') != std::string::npos || (!rest.empty() && rest[0] == '/')) return false;

  std::error_code error;
  fs::path file = fs::canonical(folder_ / rest, error);
  if (error || !IsBelow(file, folder_)) return false;
  if (fs::is_directory(file, error)) file = fs::canonical(file / "index.html", error);
  return !error && IsBelow(file, folder_) && fs::is_regular_file(file, error);
}
