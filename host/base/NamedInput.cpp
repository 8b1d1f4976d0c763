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

// A CR may be part of a name. A list from Windows has one at the end of each line, except perhaps the last.
bool EveryLineEndsInCr(const std::string& content) {
  if (content.find('\n') == std::string::npos) return false;
  for (std::size_t at = content.find('\n'); at != std::string::npos; at = content.find('\n', at + 1)) {
    if (at == 0 || content[at - 1] != '\r') return false;
  }
  return true;
}

}  // namespace

std::string NamedInput::ReadAll(const std::string& name, const char* what, std::size_t most) {
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
  for (;;) {
    Interruption::WaitFor(descriptor, POLLIN);
    Interruption::Check();
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) throw fail();
    if (count == 0) break;
    content.append(block, static_cast<std::size_t>(count));
    if (content.compare(0, 5, "%PDF-") == 0) {
      throw CommandError(
          kExitUsage,
          QStringLiteral("'%1' is a PDF file, not a %2.").arg(NativeName::ToText(name), QLatin1String(what)));
    }
    if (content.size() > most) {
      throw CommandError(kExitUsage, QStringLiteral("'%1' is larger than %2 KiB; it is not a %3.")
                                         .arg(NativeName::ToText(name))
                                         .arg(most / 1024)
                                         .arg(QLatin1String(what)));
    }
  }
  return content;
}

void NamedInput::ReadNames(const std::string& name, const char* what, const std::function<void(std::string)>& each) {
  const std::string content = ReadAll(name, what);
  const char separator = content.find('\0') == std::string::npos ? '\n' : '\0';
  const std::size_t ending = separator == '\n' && EveryLineEndsInCr(content) ? 1 : 0;
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = std::min(content.find(separator, begin), content.size());
    const std::size_t length = end - begin - (end > begin && content[end - 1] == '\r' ? ending : 0);
    if (length > 0) each(content.substr(begin, length));
    begin = end + 1;
  }
}
