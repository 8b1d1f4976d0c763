// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "tests/pdflib/FakeLibrary.h"
#include "tests/support/Sandbox.h"

namespace {

using Wrapper = HalvexPDFLibraryCPDylibCPP1311;

// Result and arguments of every member are those of the independent list.
#define MEMBER(result, name, arguments) \
  static_assert(std::is_same_v<decltype(&Wrapper::name), result(Wrapper::*) arguments>);
#define SERVICE(name)
#include "tests/abi/LibraryMembers.inc"
#undef SERVICE
#undef MEMBER

std::wstring Wide(const char* path) {
  return std::wstring(path, path + std::strlen(path));
}

// A distinct value for each argument position; byte strings hold a NUL, every third wide string is empty.
template <typename T>
T ArgumentAt(int position) {
  if constexpr (std::is_same_v<T, int>) return 1000 + position;
  if constexpr (std::is_same_v<T, double>) return position + 0.125;
  if constexpr (std::is_same_v<T, std::wstring>) {
    return position % 3 == 2 ? std::wstring() : L"\U0001F600wide" + std::to_wstring(position);
  }
  if constexpr (std::is_same_v<T, std::string>) return std::string("byte\0", 5) + std::to_string(position);
}

template <typename T>
constexpr char KindOf() {
  if constexpr (std::is_same_v<T, int>) return 'i';
  if constexpr (std::is_same_v<T, double>) return 'd';
  if constexpr (std::is_same_v<T, std::wstring>) return 'w';
  if constexpr (std::is_same_v<T, std::string>) return 's';
  return '?';
}

std::string BytesOf(const std::wstring& text) {
  return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

// The host makes wrappers with its own copy of the class: this is such a copy, written down independently.
struct HostView {
  void* handle;
  std::int32_t instanceId;
  std::uint8_t loadFailed;
  void* functions[856];
};

// Walks the calls that one forwarded call must have caused, in order.
class ExpectedCalls {
 public:
  explicit ExpectedCalls(std::vector<FakeCall> calls) : calls_(std::move(calls)) {}

  FakeCall Next(const std::string& name) {
    if (position_ == calls_.size()) {
      ADD_FAILURE() << "no further call where " << name << " was expected";
      return {};
    }
    EXPECT_EQ(calls_[position_].name, name);
    return calls_[position_++];
  }
  // A created and filled buffer with exactly these bytes.
  void* NextBuffer(const std::string& bytes) {
    const FakeCall create = Next("HPLCreateBuffer");
    if (create.arguments.size() != 3) return nullptr;
    EXPECT_EQ(std::get<int>(create.arguments[1]), static_cast<int>(bytes.size()));
    void* const buffer = std::get<void*>(create.arguments[2]);
    const FakeCall fill = Next("HPLAddToBuffer");
    EXPECT_EQ(std::get<void*>(fill.arguments[1]), buffer);
    EXPECT_EQ(static_cast<FakeBuffer*>(buffer)->bytes, bytes);
    return buffer;
  }
  bool Finished() const { return position_ == calls_.size(); }

 private:
  std::vector<FakeCall> calls_;
  std::size_t position_ = 0;
};

template <typename R, typename... A, std::size_t... I>
R CallWithSamples(Wrapper& wrapper, R (Wrapper::*member)(A...), std::index_sequence<I...>) {
  return (wrapper.*member)(ArgumentAt<std::decay_t<A>>(static_cast<int>(I))...);
}

template <typename R, typename... A>
void CheckForwarding(const OpenFakeLibrary& fake, Wrapper& wrapper, const std::string& name,
                     R (Wrapper::*member)(A...)) {
  SCOPED_TRACE(name);
  const std::string kinds{KindOf<std::decay_t<A>>()...};

  fake.Take();
  const R result = CallWithSamples(wrapper, member, std::index_sequence_for<A...>());
  ExpectedCalls calls(fake.Take());

  std::vector<void*> released, owned;
  std::vector<std::variant<int, double, void*>> expected{fake->instanceId};
  for (int i = 0; i < static_cast<int>(kinds.size()); ++i) {
    switch (kinds[static_cast<std::size_t>(i)]) {
      case 'i':
        expected.emplace_back(ArgumentAt<int>(i));
        break;
      case 'd':
        expected.emplace_back(ArgumentAt<double>(i));
        break;
      case 'w': {
        const auto text = ArgumentAt<std::wstring>(i);
        void* const buffer = text.empty() ? nullptr : calls.NextBuffer(BytesOf(text));
        owned.push_back(buffer);
        expected.emplace_back(buffer);
        break;
      }
      default:
        released.push_back(calls.NextBuffer(ArgumentAt<std::string>(i)));
        expected.emplace_back(released.back());
    }
  }
  EXPECT_EQ(calls.Next("HPL" + name).arguments, expected);
  for (void* const buffer : released) {
    EXPECT_EQ(std::get<void*>(calls.Next("HPLReleaseBuffer").arguments.at(1)), buffer);
    delete static_cast<FakeBuffer*>(buffer);
  }
  for (void* const buffer : owned) delete static_cast<FakeBuffer*>(buffer);
  if constexpr (std::is_same_v<R, int>) {
    EXPECT_EQ(result, fake->intResult);
  }
  if constexpr (std::is_same_v<R, double>) {
    EXPECT_EQ(result, fake->doubleResult);
  }
  if constexpr (std::is_same_v<R, std::wstring>) {
    calls.Next("HPLStringResultLength");
    EXPECT_EQ(result, fake->wideResult);
  }
  if constexpr (std::is_same_v<R, std::string>) {
    calls.Next("HPLAnsiStringResultLength");
    EXPECT_EQ(result, fake->byteResult);
  }
  EXPECT_TRUE(calls.Finished());
}

template <typename R, typename... A>
void CheckDefault(Wrapper& wrapper, const char* name, R (Wrapper::*member)(A...)) {
  EXPECT_EQ(CallWithSamples(wrapper, member, std::index_sequence_for<A...>()), R()) << name;
}

void CheckAllDefaults(Wrapper& wrapper) {
#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) CheckDefault(wrapper, #name, &Wrapper::name);
#include "pdflib/LibraryFunctions.def"
}

}  // namespace

TEST(Wrapper, EveryMemberForwardsToItsOwnFunction) {
  const OpenFakeLibrary fake(FAKELIBRARY_FILE);
  Wrapper wrapper(Wide(FAKELIBRARY_FILE));
  ASSERT_TRUE(wrapper.LibraryLoaded());
  fake->wideResult = {L'a', L'\0', L'\U0010FFFF', L'\0'};
  fake->byteResult = std::string("\0x\0", 3);
#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) \
  CheckForwarding(fake, wrapper, #name, &Wrapper::name);
#include "pdflib/LibraryFunctions.def"
}

TEST(Wrapper, AnswersDefaultsAndTouchesNothingWhenNotReady) {
  {
    Wrapper missing(L"no-such-library.dylib");
    EXPECT_FALSE(missing.LibraryLoaded());
    CheckAllDefaults(missing);
  }
  for (const char* path : {FAKELIBRARYWITHOUTORDINARY_FILE, FAKELIBRARYWITHOUTSERVICE_FILE}) {
    SCOPED_TRACE(path);
    const OpenFakeLibrary fake(path);
    {
      Wrapper incomplete(Wide(path));
      EXPECT_FALSE(incomplete.LibraryLoaded());
      CheckAllDefaults(incomplete);
      // All names have been tried, those after the missing one too.
      HostView view;
      std::memcpy(&view, static_cast<void*>(&incomplete), sizeof view);
      EXPECT_NE(view.handle, nullptr);
      EXPECT_EQ(view.instanceId, 0);
      EXPECT_EQ(view.loadFailed, 1);
      EXPECT_EQ(std::count(std::begin(view.functions), std::end(view.functions), nullptr), 1);
    }
    EXPECT_TRUE(fake.Take().empty());
  }
}

TEST(Wrapper, ReleasesTheInstanceOnlyWhenItsIdIsAboveZero) {
  const OpenFakeLibrary fake(FAKELIBRARY_FILE);
  for (const int id : {7, 0, -3}) {
    fake->instanceId = id;
    { EXPECT_TRUE(Wrapper(Wide(FAKELIBRARY_FILE)).LibraryLoaded()); }
    const auto calls = fake.Take();
    ASSERT_EQ(calls.size(), id > 0 ? 2U : 1U);
    EXPECT_EQ(calls[0].name, "HPLCreateLibrary");
    if (id > 0) {
      EXPECT_EQ(std::get<int>(calls[1].arguments.at(0)), id);
    }
  }
}

TEST(Wrapper, KeepsTheLibraryToItselfAndClosesIt) {
  for (const char* path : {FAKELIBRARY_FILE, FAKELIBRARYWITHOUTORDINARY_FILE}) {
    {
      const Wrapper wrapper(Wide(path));
      EXPECT_EQ(dlsym(RTLD_DEFAULT, "HPLPageCount"), nullptr);
    }
    EXPECT_EQ(dlopen(path, RTLD_LAZY | RTLD_NOLOAD), nullptr) << path;
  }
}

TEST(Wrapper, OnlyAMissingNameThatIsNotOptionalMarksItAsNotLoaded) {
  const OpenFakeLibrary fake(FAKELIBRARY_FILE);
  Wrapper wrapper(Wide(FAKELIBRARY_FILE));
  EXPECT_EQ(reinterpret_cast<void*>(wrapper.AttachFunction("HPLPageCount", false)), fake.Symbol("HPLPageCount"));
  EXPECT_EQ(wrapper.AttachFunction("HPLAbsent", true), nullptr);
  EXPECT_TRUE(wrapper.LibraryLoaded());
  EXPECT_EQ(wrapper.AttachFunction("HPLAbsent", false), nullptr);
  EXPECT_FALSE(wrapper.LibraryLoaded());
}

TEST(Wrapper, KeepsTheLowEightBitsOfTheFileName) {
  std::wstring mangled = Wide(FAKELIBRARY_FILE);
  for (wchar_t& unit : mangled) unit += 0x300;
  EXPECT_TRUE(Wrapper(mangled).LibraryLoaded());
}

TEST(Wrapper, HugeStringsPassOrAreRefusedWhole) {
  const OpenFakeLibrary fake(FAKELIBRARY_FILE);
  Wrapper wrapper(Wide(FAKELIBRARY_FILE));
  fake.Take();
  std::wstring url(1'000'000, L'\U0001F600');
  EXPECT_EQ(wrapper.SetBaseURL(url), fake->intResult);
  auto calls = fake.Take();
  ASSERT_EQ(calls.size(), 3U);
  EXPECT_EQ(std::get<int>(calls[0].arguments.at(1)), 4'000'000);
  delete static_cast<FakeBuffer*>(std::get<void*>(calls[0].arguments.at(2)));

  // One unit more than 32 bits can count: nothing is converted, not even the byte string before it.
  url.resize((std::size_t{1} << 31) / sizeof(wchar_t));
  EXPECT_EQ(wrapper.LoadFromString("bytes", url), 0);
  int release = 5;
  EXPECT_EQ(wrapper.WideStringParm(url), nullptr);
  EXPECT_TRUE(fake.Take().empty());

  // An empty byte string is a buffer all the same.
  void* const buffer = wrapper.StringParm("", release);
  EXPECT_EQ(release, 1);
  ASSERT_EQ(fake.Take().size(), 2U);
  delete static_cast<FakeBuffer*>(buffer);
}

TEST(Wrapper, OddResultsAreEmpty) {
  const OpenFakeLibrary fake(FAKELIBRARY_FILE);
  Wrapper wrapper(Wide(FAKELIBRARY_FILE));
  fake->wideResult = L"text";
  fake->byteResult = "text";
  for (const int length : {0, -5}) {
    fake->reportedLength = length;
    EXPECT_TRUE(wrapper.GetBaseURL().empty());
    EXPECT_TRUE(wrapper.SaveToString().empty());
  }
  fake->reportedLength = 2;
  EXPECT_EQ(wrapper.GetBaseURL(), L"te");
  EXPECT_TRUE(wrapper.WideStringResult(nullptr, 3).empty());
}

#ifndef __SANITIZE_ADDRESS__  // it has allocation functions of its own, and looks for leaks anyway
// Strings in both directions, refused calls and documents that come and go.
TEST(Wrapper, ManyCallsOfTheEngineTakeNoMoreMemory) {
  Wrapper engine(Wide(HALVEXENGINE_FILE));
  ASSERT_TRUE(engine.LibraryLoaded());
  const std::wstring text(200, L'x');
  const auto memoryAfter = [&](int rounds) {
    for (int round = 0; round < rounds; ++round) {
      EXPECT_EQ(engine.NewDocument(), 1);
      EXPECT_EQ(engine.SetBaseURL(text), 1);
      EXPECT_EQ(engine.GetBaseURL(), text);
      EXPECT_EQ(engine.SetInformation(2, text), 1);
      EXPECT_EQ(engine.AddLinkToWeb(0, 0, 0, 0, text, 0), 0);  // not implemented
      EXPECT_EQ(engine.LoadFromFile(text, text), 0);
      EXPECT_EQ(engine.LoadFromString(std::string(800, 'x'), text), 0);
      const std::string saved = engine.SaveToString();
      EXPECT_EQ(engine.LoadFromString(saved, text), 1);
      EXPECT_EQ(engine.PageCount(), 1);
      EXPECT_EQ(engine.RemoveDocument(engine.SelectedDocument()) + engine.RemoveDocument(engine.SelectedDocument()), 2);
    }
    return mallinfo2().uordblks;
  };
  const std::size_t before = memoryAfter(50);
  EXPECT_LT(memoryAfter(1000), before + std::size_t{100} * 1024);  // one forgotten string in each round: 800 KB
}
#endif
