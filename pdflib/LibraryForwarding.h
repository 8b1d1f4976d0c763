// SPDX-License-Identifier: Apache-2.0
#pragma once

// How a forwarding member calls the library. Included by the wrapper's header only.

#include <cstddef>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

static_assert(sizeof(wchar_t) == 4, "wide strings cross to the library as 32-bit units");

struct HalvexPDFLibraryLayout {
  using Wrapper = HalvexPDFLibraryCPDylibCPP1311;
  static_assert(offsetof(Wrapper, libraryHandle_) == 0, "the library handle is the wrapper's first field");
  static_assert(offsetof(Wrapper, instanceId_) == sizeof(void*), "the instance ID follows the handle");
  static_assert(offsetof(Wrapper, loadFailed_) == sizeof(void*) + 4, "the load-failed flag follows the instance ID");
  static_assert(offsetof(Wrapper, functions_) == sizeof(void*) + 8,
                "the table of functions starts at the next pointer");
  static_assert(sizeof(Wrapper) == sizeof(void*) + 8 + kLibraryFunctionCount * sizeof(void*),
                "the wrapper ends with its table of functions");
};

// One argument of a call: Fits() for all arguments first, then each is constructed, passed to the library, and Done().
template <>
struct HalvexPDFLibraryCPDylibCPP1311::Argument<int> {
  static bool Fits(int) { return true; }
  Argument(HalvexPDFLibraryCPDylibCPP1311&, int value) : passed(value) {}
  void Done(HalvexPDFLibraryCPDylibCPP1311&) const {}
  int passed;
};

template <>
struct HalvexPDFLibraryCPDylibCPP1311::Argument<double> {
  static bool Fits(double) { return true; }
  Argument(HalvexPDFLibraryCPDylibCPP1311&, double value) : passed(value) {}
  void Done(HalvexPDFLibraryCPDylibCPP1311&) const {}
  double passed;
};

template <>
struct HalvexPDFLibraryCPDylibCPP1311::Argument<std::wstring> {
  static bool Fits(const std::wstring& text) {
    return text.size() <= std::size_t{std::numeric_limits<int>::max()} / sizeof(wchar_t);
  }
  Argument(HalvexPDFLibraryCPDylibCPP1311& library, const std::wstring& text) : passed(library.WideStringParm(text)) {}
  void Done(HalvexPDFLibraryCPDylibCPP1311&) const {}
  void* passed;
};

template <>
struct HalvexPDFLibraryCPDylibCPP1311::Argument<std::string> {
  static bool Fits(const std::string& text) { return text.size() <= std::size_t{std::numeric_limits<int>::max()}; }
  Argument(HalvexPDFLibraryCPDylibCPP1311& library, const std::string& text)
      : passed(library.StringParm(text, release)) {}
  void Done(HalvexPDFLibraryCPDylibCPP1311& library) const {
    if (release != 0) library.ReleaseBuffer(passed);
  }
  int release = 0;
  void* passed;
};

template <typename R, typename... P>
R HalvexPDFLibraryCPDylibCPP1311::Invoke(LibraryFunctionSlot slot, P... arguments) {
  using Function = R (*)(int, P...);
  return reinterpret_cast<Function>(functions_[static_cast<int>(slot)])(instanceId_, arguments...);
}

template <typename R, typename... A>
R HalvexPDFLibraryCPDylibCPP1311::Forward(LibraryFunctionSlot slot, const A&... arguments) {
  if (loadFailed_ || !(Argument<A>::Fits(arguments) && ...)) return R();
  // Braces: the arguments are converted left to right.
  const std::tuple<Argument<A>...> converted{Argument<A>(*this, arguments)...};
  return std::apply(
      [&](const auto&... argument) -> R {
        if constexpr (std::is_same_v<R, std::wstring>) {
          wchar_t* text = Invoke<wchar_t*>(slot, argument.passed...);
          (argument.Done(*this), ...);
          return WideStringResult(text, StringResultLength());
        } else if constexpr (std::is_same_v<R, std::string>) {
          const char* text = Invoke<char*>(slot, argument.passed...);
          (argument.Done(*this), ...);
          const int length = AnsiStringResultLength();
          return text != nullptr && length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
        } else {
          const R result = Invoke<R>(slot, argument.passed...);
          (argument.Done(*this), ...);
          return result;
        }
      },
      converted);
}
