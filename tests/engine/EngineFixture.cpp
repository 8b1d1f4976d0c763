// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/EngineFixture.h"

std::wstring Wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

std::string Narrow(const std::wstring& ascii) {
  std::string text;
  for (const wchar_t unit : ascii) text += unit < 0x80 ? static_cast<char>(unit) : '?';
  return text;
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

EngineFixture::EngineFixture() : library_(Wide(HALVEXENGINE_FILE)) {
  EXPECT_TRUE(library_.LibraryLoaded());
}

bool EngineFixture::Load(const std::string& name, const std::string& bytes, const std::wstring& password) {
  WriteFile(name, bytes);
  return library_.LoadFromFile(Wide(name), password) == 1;
}

std::string EngineFixture::Show(const std::string& file, const std::string& what, const std::string& options) {
  return RunTool("mutool show -g " + options + " " + file + " " + what).output;
}

testing::AssertionResult EngineFixture::Sound(const std::string& file, const std::string& options) {
  const ToolResult result = RunTool("qpdf --check " + options + " " + file);
  return result.status == 0 ? testing::AssertionSuccess() : testing::AssertionFailure() << result.output;
}
