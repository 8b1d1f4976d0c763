// SPDX-License-Identifier: Apache-2.0
#include <ostream>

#include "tests/engine/EngineFixture.h"

namespace {

using BaseUrlTest = EngineFixture;

// Entries of the catalog with the places where /URI can be; some are read by the full parser only.
struct Place {
  const char* name;
  bool encrypted;

  friend std::ostream& operator<<(std::ostream& out, const Place& place) { return out << place.name; }
};
class BaseUrlPlaceTest : public EngineFixture, public testing::WithParamInterface<Place> {
 protected:
  // Writes and loads a file with these catalog entries and further objects.
  void Prepare(const std::string& catalogEntries, const std::vector<std::string>& more = {}) {
    WriteFile("plain.pdf", PlainPdf{catalogEntries, "", "", more}.Bytes());
    ASSERT_EQ(RunTool(std::string(GetParam().encrypted ? "qpdf --encrypt '' o 256 -- plain.pdf" : "cp plain.pdf") +
                      " source.pdf")
                  .status,
              0);
    ASSERT_EQ(library_.LoadFromFile(L"source.pdf", L""), 1);
  }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BaseUrlPlaceTest, testing::Values(Place{"Quick", false}, Place{"Full", true}),
                         [](const auto& form) { return form.param.name; });

TEST_P(BaseUrlPlaceTest, IsReadAndReplacedWhateverStoodThere) {
  const struct {
    const char* entries;
    const wchar_t* before;
    const wchar_t* set;
    const char* after;  // /URI as mutool prints it
  } cases[] = {
      {"", L"", L"http://e.org/", "<</Base(http://e.org/)>>"},
      {"/URI << /Base (old) /Keep [ 1 /x ] >>", L"old", L"new", "<</Base(new)/Keep[1/x]>>"},
      {"/URI << /Base <6F6C64> >>", L"old", L"new", "<</Base(new)>>"},
      {"/URI 4 0 R", L"ref", L"new", "<</Base(new)/K 1>>"},
      {"/URI << /Base 5 0 R >>", L"far", L"new", "<</Base(new)>>"},
      {"/URI (text)", L"", L"new", "<</Base(new)>>"},
      {"/URI null", L"", L"new", "<</Base(new)>>"},
      {"/URI << /Base 5 /K 1 >>", L"", L"new", "<</Base(new)/K 1>>"},
      {"/URI << /Base (old) /K 1 >>", L"old", L"", "<</K 1>>"},
      {"/URI << /Base (old) >>", L"old", L"", "null"},
      {"/URI << /Base (old) >>", L"old", L"a(b)\\)c\r\n<", "<</Base(a\\(b\\)\\\\\\)c\\r\\n<)>>"},
      {"/URI << /Base (\\376\\377\\000a) >>", L"a", L"a", "<</Base(a)>>"},
      {"/URI << /Base (old) >>", L"old", L"\xE9\x1F600", "<</Base(%C3%A9%F0%9F%98%80)>>"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.entries);
    Prepare(each.entries, {"<< /Base (ref) /K 1 >>", "(far)"});
    EXPECT_EQ(library_.GetBaseURL(), each.before);
    EXPECT_EQ(library_.SetBaseURL(each.set), 1);
    EXPECT_EQ(library_.GetInformation(1000), L"incremental");
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
    EXPECT_TRUE(Sound("out.pdf"));
    std::string shown = Show("out.pdf", "trailer/Root/URI");
    shown.erase(shown.find_last_not_of('\n') + 1);
    EXPECT_EQ(shown, each.after);
    const std::wstring asSet = library_.GetBaseURL();
    ASSERT_EQ(library_.LoadFromFile(L"out.pdf", L""), 1);
    EXPECT_EQ(library_.GetBaseURL(), asSet);
  }
}

TEST_P(BaseUrlPlaceTest, TwoMillionCharacters) {
  Prepare("");
  const std::wstring url = L"http://e.org/" + std::wstring(2'000'000, L'(');
  ASSERT_EQ(library_.SetBaseURL(url), 1);
  EXPECT_TRUE(library_.GetBaseURL() == url);
  ASSERT_EQ(library_.SaveToFile(L"long.pdf"), 1);
  ASSERT_EQ(library_.LoadFromFile(L"long.pdf", L""), 1);
  EXPECT_TRUE(library_.GetBaseURL() == url);
}

TEST_P(BaseUrlPlaceTest, WhetherThereIsOneAndThePdfVersionCanBeAsked) {
  const struct {
    const char* entries;
    const wchar_t* exists;
    const wchar_t* version = L"1.7";  // the header's
  } rows[] = {{"", L"0"},
              {"/URI << /Base () >>", L"1"},
              {"/URI << /Base (http://a/) >> /Version /2.0", L"1", L"2.0"},
              {"/URI << /Base 7 >> /Version /1.4", L"0"},
              {"/URI << /Base null >> /Version /latest", L"0"},
              {"/URI 5 /Version (9.9)", L"0"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.entries);
    Prepare(row.entries);
    EXPECT_EQ(library_.GetInformation(1005), row.exists);
    EXPECT_EQ(library_.GetInformation(1006), row.version);
    library_.SetBaseURL(L"http://b/");
    EXPECT_EQ(library_.GetInformation(1005), L"1");
  }
}
