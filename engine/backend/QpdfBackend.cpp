// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/QpdfBackend.h"

#include <fontconfig/fontconfig.h>

#include <mutex>
#include <new>
#include <set>
#include <utility>

#include "engine/backend/QpdfDocument.h"

namespace engine {

namespace {

template <typename T>
using Owned = std::unique_ptr<T, void (*)(T*)>;

}  // namespace

std::unique_ptr<BackendDocument> QpdfBackend::Open(std::shared_ptr<const InputFile> file, const std::string& password) {
  return QpdfDocument::Open(std::move(file), password);
}

std::vector<std::string> QpdfBackend::FontFamilies(const std::string& language) {
  static std::mutex fontconfig;  // which keeps one set of fonts for the process
  const std::lock_guard lock(fontconfig);
  const Owned<FcPattern> pattern(FcPatternCreate(), FcPatternDestroy);
  const Owned<FcObjectSet> properties(FcObjectSetBuild(FC_FAMILY, nullptr), FcObjectSetDestroy);
  if (pattern == nullptr || properties == nullptr) throw std::bad_alloc();
  if (!language.empty()) {
    const Owned<FcLangSet> languages(FcLangSetCreate(), FcLangSetDestroy);
    if (languages == nullptr) throw std::bad_alloc();
    FcLangSetAdd(languages.get(), reinterpret_cast<const FcChar8*>(language.c_str()));
    FcPatternAddLangSet(pattern.get(), FC_LANG, languages.get());
  }
  const Owned<FcFontSet> fonts(FcFontList(nullptr, pattern.get(), properties.get()), FcFontSetDestroy);
  std::set<std::string> families;
  for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
    FcChar8* family = nullptr;
    if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &family) == FcResultMatch) {
      families.insert(reinterpret_cast<const char*>(family));
    }
  }
  return {families.begin(), families.end()};
}

}  // namespace engine
