// SPDX-License-Identifier: Apache-2.0
#include "host/base/NamedInput.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/base/CommandError.h"
#include "host/base/Descriptor.h"
#include "host/base/Interruption.h"
#include "host/base/NativeName.h"

namespace {

constexpr std::size_t kLongestLine = 1 << 20;

std::string Read(const std::string& name, const char* what, bool oneLine) {
  const auto fail = [&] {
    return CommandError(kExitUsage, QStringLiteral("Cannot read the %1 '%2': %3")
                                        .arg(QLatin1String(what), NativeName::ToText(name),
                                             QString::fromLocal8Bit(std::strerror(errno))));
  };
  Descriptor own;
  // Without O_NONBLOCK, opening a named pipe would wait for its writer where no signal ends it.
  if (name != "-") own = Descriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  const int descriptor = name == "-" ? STDIN_FILENO : own.Get();
  if (descriptor < 0) throw fail();
  std::string content;
  char block[1 << 14];
  while (!oneLine || (content.size() < kLongestLine && content.find('\n') == std::string::npos)) {
    Interruption::WaitFor(descriptor, POLLIN);
    Interruption::Check();
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) throw fail();
    if (count == 0) break;
    content.append(block, static_cast<std::size_t>(count));
  }
  return content;
}

}  // namespace

std::string NamedInput::ReadAll(const std::string& name, const char* what) {
  return Read(name, what, false);
}

std::string NamedInput::ReadLine(const std::string& name, const char* what) {
  const std::string content = Read(name, what, true);
  return content.substr(0, content.find('\n'));
}

void NamedInput::ReadNames(const std::string& name, const char* what, const std::function<void(std::string)>& each) {
  const std::string content = ReadAll(name, what);
  const char separator = content.find('\0') == std::string::npos ? '\n' : '\0';
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = std::min(content.find(separator, begin), content.size());
    if (end > begin) each(content.substr(begin, end - begin));
    begin = end + 1;
  }
}
