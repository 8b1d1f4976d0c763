// SPDX-License-Identifier: Apache-2.0
#include "host/base/Console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/base/NativeName.h"

namespace {

std::string_view View(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

void Console::OpenMissingDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest free number is the one that is missing.
    [[maybe_unused]] const int opened =
        open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // NOLINT: stays open until the end
  }
}

bool Console::WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool Console::Print(const QByteArray& text) {
  return WriteAll(STDOUT_FILENO, View(text));
}

bool Console::Print(const QString& text) {
  return Print(NativeName::ToBytes(text));
}

void Console::Error(const QString& message) {
  ErrorAbout("vorlane-run", View(NativeName::ToBytes(message)));
}

void Console::ErrorAbout(std::string_view subject, std::string_view message) {
  WriteAll(STDERR_FILENO, View(OneLine(subject) + ": " + OneLine(message) + '\n'));
}

QByteArray Console::OneLine(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  QByteArray line;
  line.reserve(static_cast<int>(text.size()));
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      line += "\\x";
      line += kHex[byte >> 4];
      line += kHex[byte & 15];
    } else {
      line += c;
    }
  }
  return line;
}
