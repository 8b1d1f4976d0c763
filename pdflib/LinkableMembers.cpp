// SPDX-License-Identifier: Apache-2.0
// Makes the wrapper's inline members linkable for callers that only have their declarations. The linker takes this file
// from the kit's static library for such callers only.
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

namespace {

template <typename Member>
void Emit(Member member) {
  [[maybe_unused]] volatile Member emitted = member;
}

[[gnu::used]] void EmitAll() {
  using Wrapper = HalvexPDFLibraryCPDylibCPP1311;
  Emit(&Wrapper::LibraryLoaded);
#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) Emit(&Wrapper::name);
#include "pdflib/LibraryFunctions.def"
}

}  // namespace
