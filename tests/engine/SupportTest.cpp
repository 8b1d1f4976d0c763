// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <fstream>
#include <set>
#include <string>
#include <type_traits>

#include "tests/engine/EngineFixture.h"

namespace {

// Calls an exported function with zeros for its arguments.
template <typename R, typename... P>
R CallWithZeros(void* symbol, int instance, R (*)(int, P...)) {
  return reinterpret_cast<R (*)(int, P...)>(symbol)(instance, P()...);
}

// The default of the result's type, but for the function that returns the error.
template <typename R>
R AnswerForUnknownInstance([[maybe_unused]] const std::string& name) {
  if constexpr (std::is_same_v<R, int>) {
    if (name == "LastErrorCode") return kErrorUnknownInstance;
  }
  return R();
}

// The functions that the table in the engine's README names, one or several a row.
std::set<std::string> Documented() {
  std::set<std::string> names;
  std::ifstream readme(ENGINE_README);
  bool inTable = false;
  for (std::string line; std::getline(readme, line);) {
    if (line == "| function | meaning and results |") inTable = true;
    if (line.empty()) inTable = false;
    if (!inTable) continue;
    const std::string cell = line.substr(0, line.find('|', 1));
    for (std::size_t start = cell.find('`'); start != std::string::npos;) {
      const std::size_t end = cell.find('`', start + 1);
      names.insert(cell.substr(start + 1, end - start - 1));
      start = cell.find('`', end + 1);
    }
  }
  return names;
}

// The functions that the function table documents, for the reference of the wrapper's members.
std::set<std::string> DocumentedInTable() {
  std::set<std::string> names;
  std::ifstream table(FUNCTION_TABLE);
  for (std::string line; std::getline(table, line);) {
    if (line.rfind('#', 0) != 0 && line.find(" | ") != std::string::npos) names.insert(line.substr(0, line.find(' ')));
  }
  return names;
}

class SupportTest : public testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(HALVEXENGINE_FILE, RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
    instance_ = Function<int (*)()>("HPLCreateLibrary")();
    lastError_ = Function<int (*)(int)>("HPLLastErrorCode");
  }
  void TearDown() override {
    Function<int (*)(int)>("HPLReleaseLibrary")(instance_);
    dlclose(handle_);
  }
  template <typename F>
  F Function(const char* name) {
    return reinterpret_cast<F>(dlsym(handle_, name));
  }

  void* handle_ = nullptr;
  int instance_ = 0;
  int (*lastError_)(int) = nullptr;
};

}  // namespace

TEST_F(SupportTest, ReadmeAndTableNameExactlyWhatIsSupported) {
  std::set<std::string> supported;
  const auto visit = [&](const char* name, auto type) {
    void* const symbol = dlsym(handle_, ("HPL" + std::string(name)).c_str());
    ASSERT_NE(symbol, nullptr) << name;
    Function<int (*)(int)>("HPLDocumentCount")(instance_);  // succeeds: no error is left from the previous call
    const auto result = CallWithZeros(symbol, instance_, type);
    if (lastError_(instance_) == kErrorNotSupported) {
      EXPECT_EQ(result, decltype(result)()) << name;
    } else {
      supported.insert(name);
    }
    EXPECT_EQ(CallWithZeros(symbol, 4711, type),
              AnswerForUnknownInstance<decltype(CallWithZeros(symbol, 0, type))>(name))
        << name;
  };
#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) \
  visit(#name, static_cast<c_result(*) c_parameters>(nullptr));
#include "pdflib/LibraryFunctions.def"
  EXPECT_EQ(supported, Documented());
  EXPECT_EQ(supported, DocumentedInTable());
}

TEST_F(SupportTest, RefusedCallsConsumeTheirWideBuffersOnly) {
  const auto create = Function<void* (*)(int, int)>("HPLCreateBuffer");
  const auto add = Function<int (*)(int, void*, const void*, int)>("HPLAddToBuffer");
  void* const bytes = create(instance_, 4);
  void* const wide = create(instance_, 4);
  Function<int (*)(int, void*, void*)>("HPLNewSignProcessFromString")(instance_, bytes, wide);
  EXPECT_EQ(lastError_(instance_), kErrorNotSupported);
  EXPECT_EQ(add(instance_, bytes, "abcd", 4), 1);
  EXPECT_EQ(add(instance_, wide, "abcd", 4), 0);
  EXPECT_EQ(lastError_(instance_), kErrorBadBuffer);
}
