// SPDX-License-Identifier: Apache-2.0
// Eight threads with a wrapper each. The "tsan" preset builds this program and the engine with the thread sanitizer.
#include <atomic>
#include <fstream>
#include <iterator>
#include <thread>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "tests/support/Sandbox.h"

// libqpdf is not built with the sanitizer, which so takes the construction of its static objects for a race.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer calls it by this name
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
  return "race:libqpdf.so";
}

namespace {

constexpr int kThreads = 8;

std::wstring Wide(const std::string& text) {
  return std::wstring(text.begin(), text.end());
}

// Opens a file that the quick reader reads, one that needs the full parser, and one from memory. Returns the number of
// mistakes.
int Work(int number) {
  const std::wstring url = L"https://example.org/" + std::to_wstring(number);
  int mistakes = 0;
  for (const char* sample : {"tex-xref-stream", "damaged-xref", "encrypted-no-user-password"}) {
    HalvexPDFLibraryCPDylibCPP1311 library(Wide(HALVEXENGINE_FILE));
    const std::string path = std::string(SAMPLES "/") + sample + ".pdf";
    const std::wstring saved = Wide(sample) + L"-" + std::to_wstring(number) + L".pdf";
    std::ifstream file(path, std::ios::binary);
    mistakes += library.LoadFromFile(Wide(path), L"") != 1;
    mistakes += library.SetBaseURL(url) != 1;
    mistakes += library.PageCount() < 1;
    mistakes += library.SaveToFile(saved) != 1;
    mistakes += library.LoadFromString(std::string(std::istreambuf_iterator<char>(file), {}), L"") != 1;
    mistakes += library.SetInformation(2, url) != 1;
    mistakes += library.SaveToString().empty();
    mistakes += library.LoadFromFile(saved, L"") != 1;
    mistakes += library.GetBaseURL() != url;
    library.GetInstalledFontsByCharset(1, 0);
    mistakes += library.LastErrorCode() != 0;
  }
  return mistakes;
}

}  // namespace

TEST(Threads, WithAWrapperEachDoNotMeet) {
  // Keeps the library loaded: to the sanitizer, closing and opening it again would be a race.
  const HalvexPDFLibraryCPDylibCPP1311 open(Wide(HALVEXENGINE_FILE));
  std::atomic<int> waiting = kThreads;
  std::atomic<int> mistakes = 0;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&, number] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      for (int round = 0; round < 2; ++round) mistakes += Work(number);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mistakes, 0);
}
