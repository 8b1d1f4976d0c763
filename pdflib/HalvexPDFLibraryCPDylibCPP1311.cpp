// SPDX-License-Identifier: Apache-2.0
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

#include <dlfcn.h>

#include <algorithm>
#include <iterator>

namespace {

using Slot = LibraryFunctionSlot;

// The service functions are resolved last, in this order.
constexpr Slot kServiceFunctions[] = {
    Slot::CreateLibrary,      Slot::CreateBuffer,           Slot::AddToBuffer,   Slot::ReleaseLibrary,
    Slot::StringResultLength, Slot::AnsiStringResultLength, Slot::ReleaseBuffer,
};
static_assert(std::size(kServiceFunctions) + kOrdinaryLibraryFunctionCount == kLibraryFunctionCount);

bool IsService(Slot slot) {
  return std::find(std::begin(kServiceFunctions), std::end(kServiceFunctions), slot) != std::end(kServiceFunctions);
}

}  // namespace

HalvexPDFLibraryCPDylibCPP1311::HalvexPDFLibraryCPDylibCPP1311(const std::wstring& fileName) {
  std::string narrow;
  narrow.reserve(fileName.size());
  for (const wchar_t unit : fileName) narrow.push_back(static_cast<char>(unit & 0xFF));

  libraryHandle_ = dlopen(narrow.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (libraryHandle_ == nullptr) {
    loadFailed_ = true;
    return;
  }
  const auto attach = [this](int slot) { functions_[slot] = AttachFunction(kLibraryFunctionNames[slot], false); };
  for (int slot = 0; slot < kLibraryFunctionCount; ++slot) {
    if (!IsService(static_cast<Slot>(slot))) attach(slot);
  }
  for (const Slot slot : kServiceFunctions) attach(static_cast<int>(slot));

  if (!loadFailed_) {
    const auto create = reinterpret_cast<int (*)()>(functions_[static_cast<int>(Slot::CreateLibrary)]);
    instanceId_ = create();
  }
}

HalvexPDFLibraryCPDylibCPP1311::~HalvexPDFLibraryCPDylibCPP1311() {
  if (instanceId_ > 0) Invoke<int>(Slot::ReleaseLibrary);
  if (libraryHandle_ != nullptr) {
    dlclose(libraryHandle_);
    libraryHandle_ = nullptr;
  }
}

HalvexPDFLibraryCPDylibCPP1311::LibraryFunction HalvexPDFLibraryCPDylibCPP1311::AttachFunction(const char* name,
                                                                                               bool optional) {
  void* const symbol = libraryHandle_ != nullptr ? dlsym(libraryHandle_, name) : nullptr;
  if (symbol == nullptr && !optional) loadFailed_ = true;
  return reinterpret_cast<LibraryFunction>(symbol);
}

void* HalvexPDFLibraryCPDylibCPP1311::CreateFilledBuffer(const void* source, int size) {
  void* const buffer = Invoke<void*>(Slot::CreateBuffer, size);
  Invoke<int>(Slot::AddToBuffer, buffer, source, size);
  return buffer;
}

void* HalvexPDFLibraryCPDylibCPP1311::WideStringParm(const std::wstring& text) {
  if (loadFailed_ || text.empty() || !Argument<std::wstring>::Fits(text)) return nullptr;
  return CreateFilledBuffer(text.data(), static_cast<int>(text.size() * sizeof(wchar_t)));
}

void* HalvexPDFLibraryCPDylibCPP1311::StringParm(const std::string& text, int& release) {
  release = 0;
  if (loadFailed_ || !Argument<std::string>::Fits(text)) return nullptr;
  release = 1;
  return CreateFilledBuffer(text.data(), static_cast<int>(text.size()));
}

std::wstring HalvexPDFLibraryCPDylibCPP1311::WideStringResult(wchar_t* text, int length) {
  if (text == nullptr || length <= 0) return {};
  return std::wstring(text, static_cast<std::size_t>(length));
}

int HalvexPDFLibraryCPDylibCPP1311::StringResultLength() {
  return Invoke<int>(Slot::StringResultLength);
}

int HalvexPDFLibraryCPDylibCPP1311::AnsiStringResultLength() {
  return Invoke<int>(Slot::AnsiStringResultLength);
}

void HalvexPDFLibraryCPDylibCPP1311::ReleaseBuffer(void* buffer) {
  Invoke<int>(Slot::ReleaseBuffer, buffer);
}
