// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

struct ToolResult {
  int status = -1;
  std::string output;  // standard output and standard error
};

ToolResult RunTool(const std::string& command);
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
