// SPDX-License-Identifier: Apache-2.0
#include "engine/base/Text.h"

#include <gtest/gtest.h>

using engine::RawFromWide;
using engine::UrlFromWide;
using engine::Utf8FromWide;
using engine::WideFromRaw;
using engine::WideFromUrl;
using engine::WideFromUtf8;

TEST(Text, Utf8OfEveryLengthAndItsLimits) {
  const struct {
    std::wstring wide;
    std::string utf8;
  } cases[] = {
      {L"", ""},
      {std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
      {L"\x7F\x80\x7FF\x800", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"},
      {L"\xD7FF\xE000\xFFFF", "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
      {L"\x10000\x10FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Utf8FromWide(each.wide), each.utf8);
    EXPECT_EQ(WideFromUtf8(each.utf8), each.wide);
    EXPECT_EQ(RawFromWide(each.wide), each.utf8);
    EXPECT_EQ(WideFromRaw(each.utf8), each.wide);
  }
}

TEST(Text, UnitsThatAreNoCharactersAreReplaced) {
  for (const long unit : {0xD800L, 0xDFFFL, 0x110000L, -1L}) {
    const std::wstring text(1, static_cast<wchar_t>(unit));
    EXPECT_EQ(Utf8FromWide(text), "\xEF\xBF\xBD") << unit;
    EXPECT_EQ(UrlFromWide(text), "%EF%BF%BD") << unit;
  }
}

TEST(Text, EveryFileNameSurvivesTheWayThere) {
  std::string every;
  for (int byte = 1; byte < 256; ++byte) every += static_cast<char>(byte);
  for (const std::string& name : {every, std::string("\xC3"), std::string("\xC0\xAF"), std::string("\xED\xA0\x80"),
                                  std::string("\xF4\x90\x80\x80"), std::string("a\xE2\x82z\xE2\x82\xAC")}) {
    EXPECT_EQ(RawFromWide(WideFromRaw(name)), name);
  }
  EXPECT_EQ(WideFromUtf8("a\xFFz"), L"a\xFFFDz");
}

TEST(Text, UrlsAgainstTheStandardAreRead) {
  const struct {
    std::string file;
    std::wstring wide;
  } cases[] = {
      {std::string("\xFE\xFF\0h\xD8\x3D\xDE\0\xD8\0", 10), L"h\x1F600\xFFFD"},
      {"\xEF\xBB\xBFh\xC3\xBC", L"h\xFC"},
      {"h\xC3\xBC", L"h\xFC"},
      {"h\xFC\xC3\xBC", L"h\xFC\xC3\xBC"},
  };
  for (const auto& each : cases) EXPECT_EQ(WideFromUrl(each.file), each.wide);
}
