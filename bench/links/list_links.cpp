// SPDX-License-Identifier: Apache-2.0

// list_links FILE: writes the page and the URI of every link on the file's pages, as `pdfinfo -url` does, through the
// wrapper that hosts and actions use. With --set URL, gives every link that URL and saves as FILE.out instead.

#include <cstdio>
#include <cstring>
#include <string>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryErrorCodes.h"

namespace {

std::wstring Widened(const char* text) {
  return {text, text + std::strlen(text)};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && (argc != 4 || std::strcmp(argv[1], "--set") != 0)) return 2;
  const std::wstring file = Widened(argv[argc - 1]);
  const std::wstring url = argc == 4 ? Widened(argv[2]) : std::wstring();
  HalvexPDFLibraryCPDylibCPP1311 library(L"HalvexPDFLibraryCPDylib1311.dylib");
  if (!library.LibraryLoaded() || library.LoadFromFile(file, L"") == 0) return 1;
  const int pages = library.PageCount();
  for (int page = 1; page <= pages; ++page) {
    library.SelectPage(page);
    const int annotations = library.AnnotationCount();
    for (int index = 1; index <= annotations; ++index) {
      int action = library.GetAnnotActionID(index);
      if (action == 0) continue;
      for (;; ++action) {
        const std::wstring type = library.GetActionType(action);
        if (type.empty()) break;
        if (type != L"URI") continue;
        if (argc == 4) {
          if (library.SetActionURL(action, url) == 0) return 1;
          continue;
        }
        const std::wstring text = library.GetActionURL(action);
        std::string ascii;
        for (const wchar_t unit : text) ascii += static_cast<char>(unit);
        std::printf("%4d %s\n", page, ascii.c_str());
      }
    }
  }
  if (argc == 4 && library.SaveToFile(file + L".out") == 0) return 1;
  return library.LastErrorCode() == kErrorNone ? 0 : 1;
}
