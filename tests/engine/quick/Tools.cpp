// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/quick/Tools.h"

#include <sys/wait.h>

#include <cstdio>
#include <fstream>

ToolResult RunTool(const std::string& command) {
  ToolResult result;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return result;
  char block[4096];
  while (const std::size_t got = fread(block, 1, sizeof block, pipe)) result.output.append(block, got);
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  std::string bytes(file ? static_cast<std::size_t>(file.tellg()) : 0, '\0');
  file.seekg(0);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
