// SPDX-License-Identifier: Apache-2.0
#include "host/files/FileParts.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <QFile>
#include <queue>
#include <string_view>
#include <system_error>
#include <tuple>

#include "host/base/NativeName.h"

namespace {

constexpr char kSuffix[] = ".part";
constexpr std::size_t kFewestDigits = 4;

bool IsPartName(std::string_view name, std::string_view prefix) {
  const std::string_view suffix = kSuffix;
  if (name.size() <= prefix.size() + suffix.size() || name.substr(0, prefix.size()) != prefix) return false;
  if (name.substr(name.size() - suffix.size()) != suffix) return false;
  const std::string_view number = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
  return number.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

std::vector<FileParts::Part> FileParts::Balance(const std::vector<std::uint64_t>& sizes, std::size_t count) {
  std::vector<std::size_t> order(sizes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t one, std::size_t other) { return sizes[one] > sizes[other]; });
  using Weight = std::tuple<std::uint64_t, std::size_t, std::size_t>;  // bytes, files, the part's number
  std::priority_queue<Weight, std::vector<Weight>, std::greater<>> lightest;
  for (std::size_t part = 0; part < count; ++part) lightest.emplace(0, 0, part);
  std::vector<Part> parts(count);
  for (const std::size_t file : order) {
    const std::size_t number = std::get<2>(lightest.top());
    lightest.pop();
    Part& part = parts[number];
    part.files.push_back(file);
    part.bytes += sizes[file];
    lightest.emplace(part.bytes, part.files.size(), number);
  }
  for (Part& part : parts) std::sort(part.files.begin(), part.files.end());
  return parts;
}

std::string FileParts::Name(const std::string& prefix, std::size_t part, std::size_t count) {
  const std::size_t width = std::max(std::to_string(count - 1).size(), kFewestDigits);
  const std::string number = std::to_string(part);
  return prefix + std::string(width - number.size(), '0') + number + kSuffix;
}

std::vector<std::string> FileParts::Existing(const std::string& prefix) {
  const std::size_t base = prefix.rfind('/') + 1;  // npos + 1 is 0
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entry(base == 0 ? "." : prefix.substr(0, base), error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (IsPartName(name, prefix.substr(base))) names.push_back(prefix.substr(0, base) + name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string FileParts::Write(const std::string& name, const std::vector<std::string>& files, bool nul) {
  std::string content;
  for (const std::string& file : files) content += file + (nul ? '\0' : '\n');
  QFile list(NativeName::ToText(name));
  const auto size = static_cast<qint64>(content.size());
  const bool written = list.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) &&
                       list.write(content.data(), size) == size;
  return written ? std::string() : list.errorString().toStdString();
}
