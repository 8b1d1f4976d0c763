// SPDX-License-Identifier: Apache-2.0

// What needs no document: the library itself and the fonts of the system.

#include <algorithm>
#include <cstddef>
#include <string>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"
#include "engine/base/Text.h"
#include "engine/document/BackendModule.h"

using engine::BackendModule;
using engine::Call;
using engine::Guarded;

namespace {

// A set of characters: its number in the library's functions, and a language (BCP 47) that needs it; an empty language
// means every font.
struct CharacterSet {
  int number;
  const char* language;
};

constexpr CharacterSet kCharsets[] = {
    {1, "en"}, {2, ""},    {3, "ja"},  {4, "ko"},  {5, "zh-cn"}, {6, "zh-tw"}, {7, "he"},  {8, "ar"},
    {9, "el"}, {10, "tr"}, {11, "vi"}, {12, "th"}, {13, "pl"},   {14, "ru"},   {15, "lt"},
};

constexpr CharacterSet kCodePages[] = {
    {0, ""},      {874, "th"},  {932, "ja"},  {936, "zh-cn"}, {949, "ko"},  {950, "zh-tw"}, {1250, "pl"}, {1251, "ru"},
    {1252, "en"}, {1253, "el"}, {1254, "tr"}, {1255, "he"},   {1256, "ar"}, {1257, "lt"},   {1258, "vi"}, {65001, ""},
};

template <std::size_t N>
std::wstring FontLines(const CharacterSet (&sets)[N], int number, int options) {
  const auto* const set = std::find_if(sets, sets + N, [&](const CharacterSet& each) { return each.number == number; });
  if (set == sets + N) throw engine::EngineError(kErrorBadArgument, "unknown character set or code page");
  if (options != 0 && options != 1) throw engine::EngineError(kErrorBadArgument, "unknown font list option");
  std::string lines;
  for (const std::string& family : BackendModule::Get().FontFamilies(set->language)) {
    if (!lines.empty()) lines += "\r\n";
    lines += family;
  }
  return engine::WideFromUtf8(lines);
}

}  // namespace

wchar_t* HPLLibraryVersion(int instance) {
  return Guarded<wchar_t*>(instance, [](Call&) { return std::wstring(L"" HALVEX_ENGINE_VERSION); });
}

wchar_t* HPLLibraryVersionEx(int instance) {
  return Guarded<wchar_t*>(instance, [](Call&) { return std::wstring(L"Halvex PDF engine " HALVEX_ENGINE_VERSION); });
}

wchar_t* HPLGetInstalledFontsByCharset(int instance, int charsetIndex, int options) {
  return Guarded<wchar_t*>(instance, [&](Call&) { return FontLines(kCharsets, charsetIndex, options); });
}

wchar_t* HPLGetInstalledFontsByCodePage(int instance, int codePage, int options) {
  return Guarded<wchar_t*>(instance, [&](Call&) { return FontLines(kCodePages, codePage, options); });
}
